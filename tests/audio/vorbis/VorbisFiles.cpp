// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/audio/vorbis/VorbisFiles.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ogg/ogg.h>
#include <random>

#include <gtest/gtest.h>

#include "audio/vorbis/PacketIndex.h"
#include "platform/Paths.h"
#include "tests/support/Fixtures.h"

using namespace Qt::Literals::StringLiterals;

namespace vorbis_files {
namespace {

constexpr double pi = 3.14159265358979;

void append(std::vector<std::byte>& bytes, const void* data, std::size_t size) {
    const auto* first = static_cast<const std::byte*>(data);
    bytes.insert(bytes.end(), first, first + size);
}

bool encode(const QString& program, const support::Sound& sound, const std::filesystem::path& file,
            const std::function<QStringList(const QString& wave, const QString& ogg)>& arguments) {
    std::filesystem::path wave = file;
    wave += ".wav";
    writeWave(sound, wave);
    const support::Outcome outcome =
        support::run(program, arguments(platform::toQString(wave), platform::toQString(file)));
    std::filesystem::remove(wave);
    return outcome.exitCode == 0 && std::filesystem::exists(file);
}

}  // namespace

support::Sound music(std::size_t frames, int channels, int rate, unsigned seed) {
    std::mt19937 random(seed);
    const auto uniform = [&random] { return static_cast<double>(random()) / 4294967296.0; };
    support::Sound sound{{}, rate, channels};
    sound.samples.resize(frames * static_cast<std::size_t>(channels));
    const auto add = [&](std::size_t frame, int channel, double value) {
        sound.samples[frame * static_cast<std::size_t>(channels) +
                      static_cast<std::size_t>(channel)] += static_cast<float>(value);
    };
    for (std::size_t i = 0; i < frames; ++i)
        for (int channel = 0; channel < channels; ++channel) {
            const double seconds = static_cast<double>(i) / rate;
            add(i, channel,
                0.06 * (std::sin(2 * pi * 220 * seconds + channel) +
                        std::sin(2 * pi * 277.2 * seconds) + std::sin(2 * pi * 331 * seconds)));
        }
    for (std::size_t begin = 0; begin < frames;) {
        const double hertz = 110 * std::pow(2, std::floor(uniform() * 30) / 12);
        const bool stroke = uniform() < 0.4;
        const auto length = std::min<std::size_t>(frames - begin, static_cast<std::size_t>(rate));
        for (std::size_t i = 0; i < length; ++i) {
            const double since = static_cast<double>(i) / rate;
            double value = 0;
            for (int k = 1; k < 6 && hertz * k < 0.4 * rate; ++k)
                value += std::exp(-since * (4 + 2 * k)) / k * std::sin(2 * pi * hertz * k * since);
            if (stroke) value += std::exp(-since * 60) * (uniform() - 0.5) * 2;
            for (int channel = 0; channel < channels; ++channel)
                add(begin + i, channel, 0.2 * value * (channel % 2 == 0 ? 1 : 0.7));
        }
        begin += static_cast<std::size_t>((0.07 + 0.3 * uniform()) * rate);
    }
    return sound;
}

void writeWave(const support::Sound& sound, const std::filesystem::path& file) {
    std::vector<std::byte> bytes;
    const auto number = [&bytes](std::uint32_t value, std::size_t size) {
        append(bytes, &value, size);
    };
    const auto channels = static_cast<std::uint32_t>(sound.channels);
    const auto dataBytes = static_cast<std::uint32_t>(sound.samples.size() * 2);
    const auto rate = static_cast<std::uint32_t>(sound.rate);
    append(bytes, "RIFF", 4);
    number(36 + dataBytes, 4);
    append(bytes, "WAVEfmt ", 8);
    number(16, 4);
    number(1, 2);
    number(channels, 2);
    number(rate, 4);
    number(rate * channels * 2, 4);
    number(channels * 2, 2);
    number(16, 2);
    append(bytes, "data", 4);
    number(dataBytes, 4);
    for (const float sample : sound.samples) {
        const auto value = static_cast<std::int16_t>(
            std::lround(std::clamp(static_cast<double>(sample), -1.0, 1.0) * 32'767));
        append(bytes, &value, 2);
    }
    support::writeBytes(file, bytes);
}

bool oggenc(const support::Sound& sound, const std::filesystem::path& file,
            const QStringList& options) {
    return encode(u"oggenc"_s, sound, file, [&](const QString& wave, const QString& ogg) {
        return QStringList{u"-Q"_s, u"-s"_s, u"7"_s} + options + QStringList{u"-o"_s, ogg, wave};
    });
}

bool ffmpeg(const support::Sound& sound, const std::filesystem::path& file,
            const QStringList& options) {
    return encode(u"ffmpeg"_s, sound, file, [&](const QString& wave, const QString& ogg) {
        return QStringList{u"-v"_s, u"error"_s, u"-y"_s, u"-i"_s, wave} + options +
               QStringList{u"-f"_s, u"ogg"_s, ogg};
    });
}

std::vector<std::int16_t> decodeWithOggdec(const std::filesystem::path& file) {
    std::filesystem::path raw = file;
    raw += ".raw";
    const support::Outcome outcome = support::run(
        u"oggdec"_s,
        {u"-Q"_s, u"-R"_s, u"-o"_s, platform::toQString(raw), platform::toQString(file)});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    const std::vector<std::byte> bytes = support::readBytes(raw);
    std::filesystem::remove(raw);
    std::vector<std::int16_t> samples(bytes.size() / 2);
    if (!samples.empty()) std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
    return samples;
}

std::vector<Packet> packetsOf(const std::filesystem::path& file) {
    const std::vector<std::byte> bytes = support::readBytes(file);
    ogg_sync_state sync{};
    ogg_stream_state stream{};
    ogg_sync_init(&sync);
    std::memcpy(ogg_sync_buffer(&sync, static_cast<long>(bytes.size())), bytes.data(),
                bytes.size());
    ogg_sync_wrote(&sync, static_cast<long>(bytes.size()));
    std::vector<Packet> found;
    ogg_page page{};
    for (bool begun = false; ogg_sync_pageout(&sync, &page) == 1; begun = true) {
        if (!begun) ogg_stream_init(&stream, ogg_page_serialno(&page));
        EXPECT_EQ(ogg_stream_pagein(&stream, &page), 0);
        ogg_packet packet{};
        int got = 0;
        while ((got = ogg_stream_packetout(&stream, &packet)) != 0) {
            EXPECT_EQ(got, 1) << "a page is missing";
            if (got == 1)
                found.push_back({{reinterpret_cast<char*>(packet.packet),
                                  static_cast<std::size_t>(packet.bytes)},
                                 packet.granulepos,
                                 packet.e_o_s != 0});
        }
    }
    ogg_stream_clear(&stream);
    ogg_sync_clear(&sync);
    return found;
}

void writePackets(const std::vector<Packet>& packets, const std::filesystem::path& file) {
    std::vector<std::byte> bytes;
    ogg_stream_state stream{};
    ogg_stream_init(&stream, 7);
    for (std::size_t i = 0; i < packets.size(); ++i) {
        std::string copy = packets[i].bytes;
        ogg_packet packet{};
        packet.packet = reinterpret_cast<unsigned char*>(copy.data());
        packet.bytes = static_cast<long>(copy.size());
        packet.b_o_s = i == 0 ? 1 : 0;
        packet.e_o_s = packets[i].last ? 1 : 0;
        packet.granulepos = packets[i].granule;
        packet.packetno = static_cast<ogg_int64_t>(i);
        ogg_stream_packetin(&stream, &packet);
        if (packets[i].granule < 0 || i == 1) continue;
        ogg_page page{};
        while (ogg_stream_flush_fill(&stream, &page, 1 << 16) != 0) {
            append(bytes, page.header, static_cast<std::size_t>(page.header_len));
            append(bytes, page.body, static_cast<std::size_t>(page.body_len));
        }
    }
    ogg_stream_clear(&stream);
    support::writeBytes(file, bytes);
}

void moveGranules(const std::filesystem::path& file, std::int64_t frames) {
    const audio::vorbis::PacketIndex index(file);
    std::vector<Packet> packets = packetsOf(file);
    bool stated = false;
    for (std::size_t i = 3; i < packets.size(); ++i) {
        const std::int64_t first = index.centre(static_cast<std::int64_t>(i) - 3) + frames;
        // As soon as there is a position to state: a reader drops what it has not played yet.
        if (!stated && first > 0)
            packets[i].granule = first;
        else if (packets[i].granule >= 0)
            packets[i].granule += frames;
        if (packets[i].granule <= 0) packets[i].granule = -1;
        stated = stated || packets[i].granule > 0;
    }
    writePackets(packets, file);
}

}  // namespace vorbis_files
