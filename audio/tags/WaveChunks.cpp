// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/tags/WaveChunks.h"

#include <algorithm>

#include "audio/wave/Layout.h"
#include "audio/wave/Writer.h"
#include "platform/file/WindowReader.h"

namespace audio::tags {

void writeWithWaveChunks(const Carriage& carriage, platform::file::Replacement& file) {
    const wave::Layout sound = wave::readLayout(carriage.encoded);
    wave::Plan plan;
    plan.format = sound.format;
    plan.fmt = sound.fmt;
    plan.dataBytes = sound.data().size;
    plan.model = carriage.source;
    wave::Writer writer(file.temporary(), plan);
    platform::file::WindowReader reader(carriage.encoded);
    constexpr std::int64_t stretch = 1 << 20;
    for (std::int64_t done = 0; done < plan.dataBytes;) {
        const auto wanted = std::min(stretch, plan.dataBytes - done);
        const auto bytes =
            std::as_bytes(reader.at(sound.data().body + done, static_cast<std::size_t>(wanted)));
        writer.write(bytes.data(), bytes.size());
        done += wanted;
    }
    writer.finish();
}

}  // namespace audio::tags
