// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/effects/engine/Formats.h"

#include <algorithm>
#include <cctype>

using namespace Qt::Literals::StringLiterals;

const std::vector<FileKind>& losslessKinds() {
    static const std::vector<FileKind> kinds{
        {"tone.wav", 1.0 / 32768, true, {}, 1, 0},
        {"tone-u8.wav", 1.0 / 128, true, {}, 1, 0},
        {"tone-s24.wav", 1.0 / 8388608, false, {}, 1, 0},
        {"tone-s32.wav", 1.0 / 8388608, false, {}, 1, 0},  // what is touched goes through a float
        {"tone-f32.wav", 0, false, {}, 1, 0},
        {"tone-f64.wav", 0, false, {}, 1, 0},
        {"tone-rf64.wav", 1.0 / 32768, true, {}, 1, 0},
        {"tone-mono.wav", 1.0 / 32768, true, {}, 1, 0},
        {"tone-6ch.wav", 1.0 / 8388608, false, {}, 1, 0},
        {"tone.flac", 1.0 / 32768, true, {}, 1, 0},
    };
    return kinds;
}

const std::vector<FileKind>& lossyKinds() {
    static const std::vector<FileKind> kinds{
        {"tone.mp3", 0, false, u"-c:a libmp3lame -b:a 128k"_s, 1, 0},
        {"tone-vbr.mp3", 0, false, u"-c:a libmp3lame -q:a 2"_s, 1, 0},
        {"tone-mono.mp3", 0, false, u"-c:a libmp3lame -b:a 64k"_s, 1, 0},
        {"tone-22k.mp3", 0, false, u"-c:a libmp3lame -b:a 64k"_s, 1, 0},
        {"tone.mp2", 0, false, u"-c:a mp2 -b:a 192k"_s, 1152, 0},
        {"tone.ogg", 0, false, u"-c:a libvorbis -q:a 4"_s, 1, 0},
        {"tone.wma", 0, false, u"-c:a wmav2 -b:a 128k"_s, 2048, 2048},
        {"tone-v1.wma", 0, false, u"-c:a wmav1 -b:a 128k"_s, 2048, 2048},
    };
    return kinds;
}

std::vector<FileKind> allKinds() {
    std::vector<FileKind> kinds = losslessKinds();
    kinds.insert(kinds.end(), lossyKinds().begin(), lossyKinds().end());
    return kinds;
}

std::string testNameOf(const FileKind& kind) {
    std::string name = kind.name;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char letter) { return std::isalnum(letter) == 0; },
        '_');
    return name;
}
