#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes sound files with unusual metadata, and says what other programs read in a file.

awkward.py make VARIANT SOURCE TARGET   TARGET = SOURCE with that metadata; prints for MPEG files
                                        how many bytes stand before and behind the sound
awkward.py show FILE                    all fields and pictures that mutagen and exiftool find
awkward.py chunks FILE                  every chunk of a WAV file but the sound: name and bytes
"""
import hashlib, json, struct, subprocess, sys
import mutagen, mutagen.apev2, mutagen.flac, mutagen.id3 as id3

PICTURE = bytes(range(256)) * 40
OTHER_PICTURE = b"\xff\xe0\x00\xff" * 3000


def frames():
    return [
        id3.TIT2(encoding=1, text=["Tïtle – 音楽", "second value"]),
        id3.TPE1(encoding=3, text=["one", "two"]),
        id3.APIC(encoding=0, mime="image/png", type=3, desc="front", data=PICTURE),
        id3.APIC(encoding=1, mime="image/jpeg", type=4, desc="bäck", data=OTHER_PICTURE),
        id3.POPM(email="me@example.org", rating=196, count=7),
        id3.USLT(encoding=1, lang="eng", desc="", text="la\nla"),
        id3.TXXX(encoding=0, desc="replaygain_track_gain", text=["-6.50 dB"]),
        id3.TXXX(encoding=1, desc="REPLAYGAIN_TRACK_PEAK", text=["0.98"]),
        id3.RVA2(desc="track", channel=1, gain=-6.5, peak=0.98),
        id3.COMM(encoding=0, lang="eng", desc="iTunNORM", text=[" 00000A2B 00000A2B"]),
        id3.COMM(encoding=3, lang="deu", desc="", text=["ein Kommentar"]),
        id3.PRIV(owner="someone", data=b"\x00\xff\xe5private"),
        id3.CHAP(element_id="c1", start_time=0, end_time=900, start_offset=2**32 - 1,
                 end_offset=2**32 - 1, sub_frames=[id3.TIT2(encoding=0, text=["Chapter"])]),
        id3.CTOC(element_id="toc", flags=3, child_element_ids=["c1"], sub_frames=[]),
    ]


def id3v2(version):
    tags = id3.ID3()
    for frame in frames():
        tags.add(frame)
    if version == 3:
        tags.update_to_v23()
    path = sys.argv[4] + ".tag"
    tags.save(path, v2_version=version, v1=0)
    with open(path, "rb") as file:
        return file.read()


def syncsafe(size):
    return bytes((size >> shift) & 127 for shift in (21, 14, 7, 0))


def unsynchronised(body):
    out = bytearray()
    for i, byte in enumerate(body):
        out.append(byte)
        if byte == 255 and (i + 1 == len(body) or body[i + 1] >= 0xE0 or body[i + 1] == 0):
            out.append(0)
    return bytes(out)


def id3v22():
    def frame(name, body):
        return name + len(body).to_bytes(3, "big") + body
    body = (frame(b"TT2", b"\0Title") + frame(b"TP1", b"\x01\xff\xfeA\0b\0")
            + frame(b"PIC", b"\0PNG\x03front\0" + PICTURE)
            + frame(b"TXX", b"\0replaygain_track_gain\0-6 dB") + frame(b"RVA", b"\0" * 6)
            + bytes(100))
    return b"ID3\2\0\0" + syncsafe(len(body)) + body


def with_extended_header():
    tag = id3v2(3)
    extended = struct.pack(">IHI", 6, 0, 0)
    body = extended + tag[10:]
    return b"ID3\3\0\x40" + syncsafe(len(body)) + body


def with_unsynchronisation():
    tag = id3v2(3)
    body = unsynchronised(tag[10:])
    return b"ID3\3\0\x80" + syncsafe(len(body)) + body


def with_footer():
    tag = id3v2(4)
    body = tag[10:].rstrip(b"\0")
    rest = b"\4\0\x10" + syncsafe(len(body))
    return b"ID3" + rest + body + b"3DI" + rest


def ape():
    items = [(b"Title", b"T"), (b"Artist", b"one\0two"), (b"REPLAYGAIN_TRACK_GAIN", b"-6 dB"),
             (b"MP3GAIN_MINMAX", b"100,200"), (b"Cover Art (Front)", b"a.png\0" + PICTURE)]
    body = b"".join(struct.pack("<II", len(v), 2 if k.startswith(b"Cover") else 0) + k + b"\0" + v
                    for k, v in items)
    def edge(flags):
        return b"APETAGEX" + struct.pack("<IIII", 2000, len(body) + 32, len(items), flags) + bytes(8)
    return edge(0xA0000000) + body + edge(0x80000000)


ID3V1 = b"TAG" + b"An old title".ljust(30, b"\0") + bytes(94) + b"\x11"


def lyrics3():
    body = b"LYRICSBEGIN" + b"IND00002" + b"10" + b"LYR00005" + b"la la"
    return body + b"%06d" % len(body) + b"LYRICS200"


def vbri_frame(audio):
    count = len(audio) // 417
    head = bytes.fromhex("fffb9064") + bytes(32)
    vbri = b"VBRI" + struct.pack(">HHHIIHHHH", 1, 0, 75, len(audio) + 417, count, 1, 1, 2, count)
    return (head + vbri + struct.pack(">H", 1000)).ljust(417, b"\0")


MPEG = {
    "id3v22": lambda: (id3v22(), b""),
    "id3v23": lambda: (id3v2(3), b""),
    "id3v24": lambda: (id3v2(4), b""),
    "id3v1": lambda: (b"", ID3V1),
    "unsynchronised": lambda: (with_unsynchronisation(), b""),
    "extended-header": lambda: (with_extended_header(), b""),
    "footer": lambda: (with_footer(), b""),
    "two-tags": lambda: (id3v2(3) + id3v2(4), ID3V1),
    "apev2": lambda: (b"", ape() + ID3V1),
    "apev2-in-front": lambda: (ape(), b""),
    "lyrics3": lambda: (id3v2(3), ape() + lyrics3() + ID3V1),
    "junk-before": lambda: (id3v2(4) + b"\0" * 333 + b"some junk" * 20, b""),
    "tag-longer-than-file": lambda: (b"ID3\3\0\0\x7f\x7f\x7f\x7f", b""),
}


def strip_mpeg(source):
    """The frames of a file that lame or ffmpeg made, without tags."""
    data = open(source, "rb").read()
    start = 0
    while data[start:start + 3] == b"ID3":
        size = data[start + 6:start + 10]
        start += 10 + (size[0] << 21 | size[1] << 14 | size[2] << 7 | size[3])
    end = len(data) - 128 if data[-128:-125] == b"TAG" else len(data)
    return data[start:end]


def chunk(name, body):
    return name + struct.pack("<I", len(body)) + body + bytes(len(body) % 2)


def walk(data):
    at, found = 12, []
    while at + 8 <= len(data):
        name, size = data[at:at + 4], struct.unpack_from("<I", data, at + 4)[0]
        found.append((name, data[at + 8:at + 8 + size]))
        at += 8 + size + size % 2
    return found


BEXT = chunk(b"bext", b"A description".ljust(602, b"\0") + b"A=PCM,F=44100\r\n")
IXML = chunk(b"iXML", b'<?xml version="1.0"?><BWFXML><SCENE>1</SCENE></BWFXML>')
INFO = chunk(b"LIST", b"INFO" + chunk(b"INAM", b"Name\0") + chunk(b"IART", b"Artist\0"))
CUE = chunk(b"cue ", struct.pack("<IIIIIII", 1, 1, 100, 0x61746164, 0, 0, 100))
ODD = chunk(b"odd ", b"odd") + chunk(b"strg", b"\0\xff")


def wave(source, before=b"", after=b"", data_size=None, riff_size=None, tail=b""):
    parts = dict(walk(open(source, "rb").read()))
    sound = parts[b"data"]
    size = len(sound) if data_size is None else data_size
    body = (b"WAVE" + chunk(b"fmt ", parts[b"fmt "]) + before + b"data" + struct.pack("<I", size)
            + sound + after)
    total = len(body) if riff_size is None else riff_size
    return b"RIFF" + struct.pack("<I", total) + body + tail


def wave_id3():
    return chunk(b"id3 ", id3v2(3))


WAVE = {
    "bext-ixml": lambda s: wave(s, BEXT + IXML, b""),
    "list-after": lambda s: wave(s, b"", INFO + CUE),
    "list-before": lambda s: wave(s, INFO, b""),
    "id3-chunk": lambda s: wave(s, b"", wave_id3()),
    "odd-sizes": lambda s: wave(s, ODD, ODD + INFO),
    "everything": lambda s: wave(s, BEXT + ODD + CUE, IXML + INFO + wave_id3()),
}
LYING = {
    "riff-size-zero": lambda s: wave(s, INFO, b"", riff_size=0),
    "riff-size-huge": lambda s: wave(s, INFO, b"", riff_size=0xFFFFFFF0),
    "data-size-zero": lambda s: wave(s, INFO, b"", data_size=0, riff_size=0),
    "data-size-unknown": lambda s: wave(s, INFO, b"", data_size=0xFFFFFFFF, riff_size=0xFFFFFFFF),
    "data-past-the-end": lambda s: wave(s, INFO, b"", data_size=10**9),
    "chunk-past-the-end": lambda s: wave(s, b"", INFO + b"LIST" + struct.pack("<I", 10**6) + b"INFO"),
}


def ogg_pages(data):
    at, pages = 0, []
    while at + 27 <= len(data):
        count = data[at + 26]
        size = 27 + count + sum(data[at + 27:at + 27 + count])
        pages.append(bytearray(data[at:at + size]))
        at += size
    return pages


def ogg_checksum(page):
    page[22:26] = bytes(4)
    crc = 0
    for byte in page:
        crc ^= byte << 24
        for _ in range(8):
            crc = (crc << 1 ^ 0x04C11DB7 if crc & 0x80000000 else crc << 1) & 0xFFFFFFFF
    page[22:26] = struct.pack("<I", crc)


def make(variant, source, target):
    if variant in MPEG:
        leading, trailing = MPEG[variant]()
        open(target, "wb").write(leading + strip_mpeg(source) + trailing)
        print(len(leading), len(trailing))
    elif variant == "vbri":
        audio = strip_mpeg(source)
        open(target, "wb").write(vbri_frame(audio) + audio)
        print(0, 0)
    elif variant == "cut-last-frame":
        leading = id3v2(4)
        open(target, "wb").write(leading + strip_mpeg(source)[:-100])
        print(len(leading), 0)
    elif variant in WAVE or variant in LYING:
        open(target, "wb").write((WAVE.get(variant) or LYING[variant])(source))
    elif variant == "no-end-of-stream":
        pages = ogg_pages(open(source, "rb").read())
        pages[-1][5] &= ~4
        ogg_checksum(pages[-1])
        open(target, "wb").write(b"".join(pages))
    elif variant == "fields":
        open(target, "wb").write(open(source, "rb").read())
        tag(target)
    else:
        sys.exit("no such variant: " + variant)


def tag(path):
    """Fields of every kind that the format of the file knows."""
    file = mutagen.File(path)
    kind = type(file).__name__
    if kind in ("OggVorbis", "OggOpus", "FLAC"):
        file["title"] = ["Tïtle – 音楽", "second value"]
        file["artist"] = ["one", "two"]
        file["odd field"] = ["x=y"]
        file["replaygain_track_gain"] = ["-6.50 dB"]
        file["r128_track_gain"] = ["256"]
        art = mutagen.flac.Picture()
        art.data, art.mime, art.type, art.desc = PICTURE, "image/png", 3, "front"
        if kind == "FLAC":
            file.add_picture(art)
        else:
            import base64
            file["metadata_block_picture"] = [base64.b64encode(art.write()).decode()]
    elif kind == "ASF":
        import mutagen.asf as asf
        file["Title"] = "Tïtle – 音楽"
        file["Author"] = ["one", "two"]
        file["WM/AlbumTitle"] = "An album"
        file["WM/SharedUserRating"] = asf.ASFDWordAttribute(75)
        file["replaygain_track_gain"] = "-6.50 dB"
        file["WM/Picture"] = [asf.ASFByteArrayAttribute(
            b"\x03" + struct.pack("<I", len(d)) + "image/png\0".encode("utf-16-le") + b"\0\0" + d)
            for d in (PICTURE, OTHER_PICTURE * 8)]
    elif kind == "MP4":
        from mutagen.mp4 import MP4Cover, MP4FreeForm
        file["\xa9nam"] = ["Tïtle – 音楽"]
        file["\xa9ART"] = ["one", "two"]
        file["trkn"] = [(3, 9)]
        file["covr"] = [MP4Cover(PICTURE, MP4Cover.FORMAT_PNG)]
        file["----:com.apple.iTunes:replaygain_track_gain"] = [MP4FreeForm(b"-6.50 dB")]
        file["----:com.apple.iTunes:SOMETHING"] = [MP4FreeForm(b"of mine")]
    file.save()


def plain(value):
    if isinstance(value, bytes):
        return hashlib.sha1(value).hexdigest()
    if isinstance(value, (list, tuple)):
        return [plain(v) for v in value]
    return repr(value) if not hasattr(value, "value") else plain(value.value)


def show(path):
    result = {}
    try:
        file = mutagen.File(path)
    except mutagen.MutagenError as error:
        file, result["mutagen"] = None, type(error).__name__
    tags = getattr(file, "tags", None)
    for key, value in tags.items() if hasattr(tags, "items") else []:
        result.setdefault(key, []).append(plain(value))
    result["pictures"] = [plain(p.data) for p in getattr(file, "pictures", [])]
    if type(file).__name__ not in ("OggVorbis", "OggOpus", "FLAC", "ASF", "MP4", "WAVE"):
        try:

            result.update({k: plain(bytes(str(v), "utf-8") if v.kind != 1 else v.value)
                           for k, v in mutagen.apev2.APEv2(path).items()})
        except mutagen.apev2.error:
            pass
    groups = subprocess.run(
        ["exiftool", "-G1", "-a", "-u", "-j", "-b", "-x", "System:all", "-x", "ExifTool:all",
         "-x", "File:all", "-x", "Composite:all", "-x", "MPEG:all", path],
        capture_output=True).stdout
    skipped = ("Duration", "AvgBytes", "NumSampleFrames", "DataPackets", "FileLength", "PlayDur",
               "SendDur", "Preroll", "CreationDate", "FileID", "MaxBitrate", "Packet", "Flags",
               "SourceFile", "NominalBitrate", "Vendor", "MinimumBlock", "MaximumBlock",
               "MinimumFrame", "MaximumFrame", "TotalSamples", "MD5", "MediaData", "Bitrate",
               "StreamNumber", "ErrorCorrection", "TimeOffset", "Encoding", "MediaCreate",
               "TrackDuration", "CreateDate", "ModifyDate", "TrackCreate", "TrackModify",
               "MediaModify", "AvgBitrate", "NumberOfSamples", "DS64", "CodecName", "CodecDesc",
               "StreamType", "Encoder", "FrameSize", "Padding")
    exif = {k: v for k, v in json.loads(groups)[0].items()
            if not any(s in k.split(":")[-1] for s in skipped)} if groups else {}
    print(json.dumps([result, exif], sort_keys=True, ensure_ascii=False, indent=1))


if sys.argv[1] == "make":
    make(*sys.argv[2:5])
elif sys.argv[1] == "show":
    show(sys.argv[2])
elif sys.argv[1] == "chunks":
    for name, body in walk(open(sys.argv[2], "rb").read()):
        if name not in (b"data", b"ds64", b"fact"):
            print(name, len(body), hashlib.sha1(body).hexdigest())
