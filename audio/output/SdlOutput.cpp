// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/output/SdlOutput.h"

#include <atomic>
#include <chrono>
#include <string>

#define SDL_MAIN_HANDLED  // the program has a main of its own
#include <SDL.h>

#include "platform/Error.h"

namespace audio::output {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kStall = std::chrono::milliseconds(700);  // some twelve blocks without a call

platform::Error failure() {
    return platform::Error(std::string("No sound device can be opened: ") + SDL_GetError() + ".");
}

/// SDL's audio half, afresh for each device, so that drivers which were absent before are found.
class SdlAudio {
  public:
    SdlAudio() {
        SDL_SetMainReady();
        SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        SDL_SetHint(SDL_HINT_AUDIO_DEVICE_APP_NAME, "Tracksmith");
        if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) throw failure();
    }
    ~SdlAudio() { SDL_QuitSubSystem(SDL_INIT_AUDIO); }
    SdlAudio(const SdlAudio&) = delete;
    SdlAudio& operator=(const SdlAudio&) = delete;
};

class SdlOutput final : public OutputDevice {
  public:
    SdlOutput(int rate, FrameSource& source)
        : timing_{rate, kBlockFrames, true}, source_(source), lastCall_(Clock::now()) {
        SDL_AudioSpec wanted{};
        wanted.freq = rate;
        wanted.format = AUDIO_F32SYS;
        wanted.channels = 2;
        wanted.samples = kBlockFrames;
        wanted.callback = &SdlOutput::call;
        wanted.userdata = this;
        device_ = SDL_OpenAudioDevice(nullptr, 0, &wanted, nullptr, 0);
        if (device_ == 0) throw failure();
    }
    ~SdlOutput() override { SDL_CloseAudioDevice(device_); }

    void start() override {
        lastCall_ = Clock::now();
        SDL_PauseAudioDevice(device_, 0);
    }
    int rate() const override { return timing_.rate; }
    std::string name() const override { return SDL_GetCurrentAudioDriver(); }
    bool alive() const override {
        // SDL goes on calling for a device that is gone, but calls it stopped.
        return SDL_GetAudioDeviceStatus(device_) != SDL_AUDIO_STOPPED &&
               Clock::now() - lastCall_.load() < kStall;
    }

  private:
    static void SDLCALL call(void* self, Uint8* bytes, int size) {
        auto& output = *static_cast<SdlOutput*>(self);
        output.lastCall_ = Clock::now();
        output.source_.render(reinterpret_cast<float*>(bytes), std::size_t(size) / sizeof(float[2]),
                              output.timing_);
    }

    const SdlAudio audio_;
    const Timing timing_;
    FrameSource& source_;
    std::atomic<Clock::time_point> lastCall_;  // written by SDL's thread, read by the owner's
    SDL_AudioDeviceID device_ = 0;
};

}  // namespace

std::unique_ptr<OutputDevice> openSdlOutput(int rate, FrameSource& source) {
    return std::make_unique<SdlOutput>(rate, source);
}

}  // namespace audio::output
