// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/output/SdlOutput.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <chrono>
#include <string>

#define SDL_MAIN_HANDLED  // the program has a main of its own
#include <SDL.h>

#include "platform/Error.h"
#include "platform/Program.h"

namespace audio::output {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kStall = std::chrono::milliseconds(500);  // without a call, and four blocks more

/// The power of two nearest to a time: what sound systems divide their buffers by.
int blockFrames(const DeviceWish& wish) {
    const auto frames = unsigned(wish.rate * wish.buffer.count() / 1000);
    return int(std::clamp(std::bit_floor(frames + frames / 2), 256U, 32768U));
}

platform::Error failure() {
    return platform::Error(std::string("No sound device can be opened: ") + SDL_GetError() + ".");
}

/// SDL's audio half, afresh for each device, so that drivers which were absent before are found.
class SdlAudio {
  public:
    SdlAudio() {
        SDL_SetMainReady();
        SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) throw failure();
    }
    ~SdlAudio() { SDL_QuitSubSystem(SDL_INIT_AUDIO); }
    SdlAudio(const SdlAudio&) = delete;
    SdlAudio& operator=(const SdlAudio&) = delete;
};

class SdlOutput final : public OutputDevice {
  public:
    SdlOutput(const DeviceWish& wish, FrameSource& source)
        : rate_(wish.rate),
          block_(durationOf(blockFrames(wish), wish.rate)),
          source_(source),
          lastCall_(Clock::now()) {
        SDL_AudioSpec wanted{};
        wanted.freq = wish.rate;
        wanted.format = AUDIO_F32SYS;
        wanted.channels = 2;
        wanted.samples = Uint16(blockFrames(wish));
        wanted.callback = &SdlOutput::call;
        wanted.userdata = this;
        device_ = SDL_OpenAudioDevice(nullptr, 0, &wanted, nullptr, 0);
        if (device_ == 0) throw failure();
        name_ = SDL_GetCurrentAudioDriver();
    }
    ~SdlOutput() override { SDL_CloseAudioDevice(device_); }

    void start() override {
        lastCall_ = Clock::now();
        SDL_PauseAudioDevice(device_, 0);
    }
    int rate() const override { return rate_; }
    std::string name() const override { return name_; }
    bool alive() const override {
        return !gone_ && Clock::now() - lastCall_.load() < kStall + 4 * block_;
    }
    int dropOuts() const override { return dropOuts_; }

  private:
    static void SDLCALL call(void* self, Uint8* bytes, int size) {
        static_cast<SdlOutput*>(self)->fill(reinterpret_cast<float*>(bytes),
                                            std::size_t(size) / sizeof(float[2]));
    }
    void fill(float* stereo, std::size_t frames) {
        const auto now = Clock::now();
        // The device has two blocks: it asks for one while it plays the other.
        if (now - lastCall_.exchange(now) > 2 * block_) ++dropOuts_;
        // SDL goes on calling for a device that is gone, but calls it stopped.
        gone_ = SDL_GetAudioDeviceStatus(device_) == SDL_AUDIO_STOPPED;
        source_.render(stereo, frames, {rate_, now + block_});
    }

    const SdlAudio audio_;
    const int rate_;
    const std::chrono::nanoseconds block_;
    FrameSource& source_;
    // SDL's thread writes these, any thread reads them.
    std::atomic<Clock::time_point> lastCall_;
    std::atomic<bool> gone_ = false;
    std::atomic<int> dropOuts_ = 0;
    SDL_AudioDeviceID device_ = 0;
    std::string name_;
};

}  // namespace

std::unique_ptr<OutputDevice> openSdlOutput(const DeviceWish& wish, FrameSource& source) {
    return std::make_unique<SdlOutput>(wish, source);
}

void describeStream() {
    SDL_SetHint(SDL_HINT_AUDIO_DEVICE_APP_NAME, qUtf8Printable(platform::programTitle()));
    SDL_SetHint(SDL_HINT_AUDIO_DEVICE_STREAM_NAME, "Playlist");
    SDL_SetHint(SDL_HINT_AUDIO_DEVICE_STREAM_ROLE, "music");
    // PulseAudio's client library takes the role from here alone.
    SDL_setenv("PULSE_PROP", "media.role=music application.icon_name=tracksmith", 0);
}

}  // namespace audio::output
