// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace foreign {

/// A short sound whose rate, channels, length and contents follow from a number.
struct Sound {
    unsigned seed = 1;
    int rate = 44'100;
    int channels = 2;
    double seconds = 3;
};
/// The sound of a number: rates of 8 to 48 kHz, one or two channels, 0.1 to 5 s.
Sound soundOf(unsigned seed);
/// The sound as a WAV file of 16 bits.
void writeWav(const Sound& sound, const std::filesystem::path& file);

/// How a decoder's word on the file is held against another's.
enum class Likeness {
    Exact,    ///< every sample
    Settles,  ///< after a jump nearly: what is predicted from all before differs by rounding
    Noise,    ///< after a jump alike only: the decoder fills bands with noise of its own
};

/// One way of making a file: an encoder, the container it writes, and the containers that the
/// packets are then copied into, one after the other.
struct Maker {
    std::string encoder;                  ///< a row of the table of encoders ("vorbis", "oggenc")
    std::vector<std::string> containers;  ///< extensions; the first is the encoder's own
    std::string name() const;             ///< "vorbis webm ogg"
};

/// Every encoder with every container that takes it, and all copies of one into another.
const std::vector<Maker>& allMakers();
/// The encoders of all makers, each once.
std::vector<std::string> allEncoders();
Likeness likenessOf(const Maker& maker);

/// Makes the file in a folder; empty where the programs refuse, as for a rate that the codec does
/// not have.
std::filesystem::path make(const Maker& maker, const std::filesystem::path& wav,
                           const std::filesystem::path& folder);

}  // namespace foreign
