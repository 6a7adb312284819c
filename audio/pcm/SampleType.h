// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace audio::pcm {

/// How the samples of a sound lie in its file; Lossy where they are not samples at all.
enum class SampleType { U8, S16, S24, S32, F32, F64, Lossy };

/// Bytes of one sample of one channel of PCM; 0 for SampleType::Lossy.
int bytesPerSample(SampleType type);

}  // namespace audio::pcm
