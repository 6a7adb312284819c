// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

/// The edit list and what turns it into sound again. In this folder a "frame" is one sample per
/// channel; sound is interleaved 32-bit floats with full scale at ±1.
namespace audio::edit {

/// Reads a stretch of sound from any frame on. One thread at a time.
class FrameReader {
  public:
    FrameReader() = default;
    virtual ~FrameReader() = default;
    FrameReader(const FrameReader&) = delete;
    FrameReader& operator=(const FrameReader&) = delete;

    /// The next frames, up to `frames` of them; returns how many, 0 only at the end. Throws
    /// platform::Error where the sound cannot be read; the reader is of no use afterwards.
    virtual std::size_t read(float* interleaved, std::size_t frames) = 0;
    /// Makes the next read() begin at this frame, from 0 to the end. Cheap forwards; backwards some
    /// kinds begin anew.
    virtual void seek(std::int64_t frame) = 0;
};

/// Fills the whole block, with silence behind the end. Returns how many frames were read.
std::size_t readFully(FrameReader& reader, float* interleaved, std::size_t frames, int channels);

/// Sound that an edit list refers to: a file, or what an effect makes of other sound. Immutable,
/// shared between lists and threads; nothing is rendered before it is read.
class Material {
  public:
    Material() = default;
    virtual ~Material() = default;
    Material(const Material&) = delete;
    Material& operator=(const Material&) = delete;

    virtual std::int64_t frames() const = 0;
    /// How many bits an integer needs to hold any of its samples as it is; 0 where none does.
    virtual int integerBits() const { return 0; }
    /// Whether a reader gets to any frame without rendering all that lies before it, so that
    /// several readers can share the work.
    virtual bool seeksFast() const { return false; }
    /// A reader of its own, at frame 0. Any thread. The material must outlive it.
    virtual std::unique_ptr<FrameReader> open() const = 0;
    /// Closes the files that no reader is using, so that they can be replaced; the next reader
    /// opens them again. Any thread.
    virtual void closeFiles() const {}
};

/// What every sound in an edit list has in common.
struct Shape {
    int sampleRate = 0;
    int channels = 0;
    bool operator==(const Shape&) const = default;
};

}  // namespace audio::edit
