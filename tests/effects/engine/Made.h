// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <functional>

#include <QStringList>

#include "effects/engine/AudioEditor.h"
#include "tests/support/Sound.h"

/// Writes the sound as a file of the kind that the extension names, with the ffmpeg program and
/// these options of its encoder. Fails the test where it cannot.
void makeFile(const std::filesystem::path& file, const support::Sound& sound,
              const QStringList& options = {});

/// Noise of that level (peak, full scale 1), the same for the same seed.
support::Sound noise(int rate, int channels, double seconds, double level, unsigned seed = 1);
/// Adds sound behind sound of the same rate and channels.
void extend(support::Sound& sound, const support::Sound& more);

/// Loads a file, changes its sound and saves it over itself.
void edit(const std::filesystem::path& file,
          const std::function<void(effects::AudioEditor&)>& change);
/// Runs a program of which %1 is the one file and %2 the other. Fails the test where it fails.
void runProgram(const char* command, const std::filesystem::path& first,
                const std::filesystem::path& second);
