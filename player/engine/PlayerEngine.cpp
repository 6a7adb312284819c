// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/PlayerEngine.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <exception>
#include <utility>

#include <QTimer>

#include "audio/dsp/Spectrum.h"
#include "audio/output/OutputKeeper.h"
#include "audio/output/SdlOutput.h"
#include "lists/ListReader.h"
#include "platform/AbsolutePath.h"
#include "platform/Error.h"
#include "player/engine/Mixer.h"
#include "player/engine/PeaksReader.h"
#include "player/engine/PlaylistStore.h"
#include "player/engine/RateShare.h"
#include "player/engine/Transport.h"
#include "player/engine/Voice.h"
#include "player/engine/Wake.h"

namespace player {
namespace {

constexpr int kPollMs = 20;  // while something plays
constexpr std::int64_t kStepMs = 10000;
constexpr std::chrono::milliseconds kReleaseWait(50);

bool isPlayer(int player) {
    return player >= 0 && player < kPlayers;
}

/// An engine that opens no URL, whatever it is put together from.
OpenSound localOnly(OpenSound open) {
    return [open = std::move(open)](const QString& path) {
        if (lists::isUrl(path))
            throw platform::Error("\"" + path.toStdString() + "\" is no local file.");
        return open(path);
    };
}

EngineParts usualParts() {
    audio::output::describeStream();
    return {audio::output::openSdlOutput, openWithDecoder};
}

int clampLevel(int level) {
    return std::clamp(level, 0, 99);
}

}  // namespace

/// Puts the parts together: playlists, one voice and one transport a player, the mixer, the device.
class PlayerEngine::Impl {
  public:
    Impl(PlayerEngine& engine, const EngineParts& parts);
    ~Impl() { keeper_.shutDown(); }  // before the voices that it asks for sound

    template <typename Call>
    std::int32_t attempt(Call call) {
        try {
            call();
            return 0;
        } catch (const std::exception& error) {
            lastError = QString::fromUtf8(error.what());
            return 1;
        }
    }

    Transport& transport(int player) { return player == 0 ? transport0_ : transport1_; }
    Voice& voice(int player) { return player == 0 ? voice0_ : voice1_; }
    PeaksReader& peaks(int player) { return player == 0 ? peaks0_ : peaks1_; }
    int deviceRate() const { return keeper_.rate(); }
    QString outputName() const { return QString::fromStdString(keeper_.deviceName()); }

    void stop(int player) {
        transport(player).stop();
        endOverlay(player);
    }
    void fade(int player, int from, int to, std::int64_t milliseconds) {
        Transport& faded = transport(player);
        const bool starts = faded.status() == StatusStopped;
        if (!faded.fade(from, to, milliseconds) || !starts) return;
        faded.playSound();
        overlay_ = true;
    }
    void playItem(int player, int index) {
        endOverlay(player);
        transport(player).playItem(index);
    }
    /// The other player of an overlay is not left to sound alone.
    void step(int player, int direction) {
        Transport& stepped = transport(player);
        const bool faded = endOverlay(player) && stepped.status() == StatusStopped;
        stepped.step(direction);
        if (faded) stepped.playSound();
    }
    void release(const QString& file);
    void acquire(const QString& file);
    void forBoth(const std::function<void(int)>& call) {
        for (int player = 0; player < kPlayers; ++player) call(player);
    }

    PlaylistStore store;
    QString lastError;
    std::int16_t unit = UnitMilliseconds;
    audio::dsp::Spectrum spectrum;

  private:
    /// True where there was one.
    bool endOverlay(int player) {
        if (!std::exchange(overlay_, false)) return false;
        transport(1 - player).stop();
        return true;
    }
    void connectPlayer(int player);
    void followStatus();
    void poll();

    PlayerEngine& engine_;
    QTimer pollTimer_;
    Wake newsCame_;  // these three by the voices' and the peaks' threads
    Wake peaksCame0_;
    Wake peaksCame1_;
    Mixer mixer_;  // knows the voices' places before they are made; asks them for sound later
    audio::output::OutputKeeper keeper_;
    RateShare rates_;
    Voice voice0_;
    Voice voice1_;
    Transport transport0_;
    Transport transport1_;
    PeaksReader peaks0_;
    PeaksReader peaks1_;
    bool overlay_ = false;  // a fade has started a player: Stop ends both
};

PlayerEngine::Impl::Impl(PlayerEngine& engine, const EngineParts& parts)
    : engine_(engine),
      newsCame_([this] { poll(); }),
      peaksCame0_([this] { Q_EMIT engine_.PeaksChanged(0); }),
      peaksCame1_([this] { Q_EMIT engine_.PeaksChanged(1); }),
      mixer_({&voice0_, &voice1_}),
      keeper_(parts.openDevice, mixer_),
      rates_(keeper_),
      voice0_(0, store.list(0), parts.openSound, rates_, std::ref(newsCame_)),
      voice1_(1, store.list(1), parts.openSound, rates_, std::ref(newsCame_)),
      transport0_(0, store, voice0_),
      transport1_(1, store, voice1_),
      peaks0_(parts.openSound, std::ref(peaksCame0_)),
      peaks1_(parts.openSound, std::ref(peaksCame1_)) {
    connect(&store, &PlaylistStore::infoChanged, &engine_, &PlayerEngine::ItemInfoChanged);
    connect(&pollTimer_, &QTimer::timeout, &pollTimer_, [this] { poll(); });
    pollTimer_.setInterval(kPollMs);
    forBoth([this](int player) { connectPlayer(player); });
}

void PlayerEngine::Impl::connectPlayer(int player) {
    const Transport& from = transport(player);
    connect(&from, &Transport::statusChanged, &pollTimer_, [this] { followStatus(); });
    connect(&from, &Transport::started, &engine_,
            [this, player] { Q_EMIT engine_.PlaybackStarted(player); });
    connect(&from, &Transport::nowPlayingChanged, &engine_,
            [this, player](int index) { Q_EMIT engine_.NowPlayingChanged(player, index); });
    connect(&from, &Transport::ended, &engine_,
            [this, player](int index) { Q_EMIT engine_.PlaybackEnded(player, index); });
    connect(&from, &Transport::unloaded, &engine_,
            [this, player] { Q_EMIT engine_.PeaksChanged(player); });
}

void PlayerEngine::Impl::release(const QString& file) {
    forBoth([&](int player) {
        voice(player).release(file);
        peaks(player).release(file);
    });
    const auto until = std::chrono::steady_clock::now() + kReleaseWait;
    forBoth([&](int player) {
        voice(player).awaitOrders(until);
        peaks(player).awaitRest(until);
    });
}

void PlayerEngine::Impl::acquire(const QString& file) {
    forBoth([&](int player) {
        voice(player).acquire(file);
        transport(player).forget(file);
        if (transport(player).path() == file) (player == 0 ? peaksCame0_ : peaksCame1_)();
    });
    store.readAgain(file);
}

void PlayerEngine::Impl::followStatus() {
    bool playing = false;
    forBoth([&](int player) { playing |= transport(player).status() == StatusPlaying; });
    keeper_.setPlaying(playing);
    if (playing && !pollTimer_.isActive()) pollTimer_.start();
    if (!playing) pollTimer_.stop();
}

void PlayerEngine::Impl::poll() {
    forBoth([this](int player) {
        transport(player).poll();
        if (voice(player).channel().fadedOut()) transport(player).stop();
    });
}

PlayerEngine::PlayerEngine(QObject* parent) : PlayerEngine(usualParts(), parent) {}

PlayerEngine::PlayerEngine(const EngineParts& parts, QObject* parent)
    : QObject(parent),
      impl_(std::make_unique<Impl>(*this,
                                   EngineParts{parts.openDevice, localOnly(parts.openSound)})) {}

PlayerEngine::~PlayerEngine() = default;

void PlayerEngine::InitEngine(std::int16_t, std::intptr_t, std::int16_t, std::int16_t, std::int16_t,
                              std::int16_t) {
    // Both players are there from the start, so that a sound can be played before this call.
}

void PlayerEngine::LoadSound(std::int16_t player, const QString& path) {
    if (isPlayer(player)) impl_->transport(player).loadSound(platform::absolutePath(path));
}

void PlayerEngine::PlaySound(std::int16_t player) {
    if (isPlayer(player)) impl_->transport(player).playSound();
}

void PlayerEngine::SetPlayerFlag(std::int16_t, bool) {}

std::int32_t PlayerEngine::PlaylistLoad(std::int16_t player, const QString& path,
                                        std::int32_t replace) {
    if (!isPlayer(player)) return 1;
    std::vector<lists::ListedEntry> entries;
    if (impl_->attempt([&] { entries = lists::readListFile(path); }) != 0) return 1;
    return PlaylistFill(player, entries, replace);
}

std::int32_t PlayerEngine::PlaylistFill(std::int16_t player,
                                        const std::vector<lists::ListedEntry>& entries,
                                        std::int32_t replace) {
    if (!isPlayer(player)) return 1;
    return impl_->attempt([&] {
        impl_->store.fill(player, entries, replace != 0);
        impl_->transport(player).followList();
    });
}

std::int32_t PlayerEngine::PlaylistSave(std::int16_t player, const QString& path,
                                        std::int32_t format) {
    if (!isPlayer(player)) return 1;
    return impl_->attempt([&] { impl_->store.save(player, path, format); });
}

std::int16_t PlayerEngine::PlaylistGetCount(std::int16_t player) const {
    return isPlayer(player) ? std::int16_t(impl_->store.list(player).count()) : std::int16_t(0);
}

QString PlayerEngine::PlaylistGetItemInfo(std::int16_t player, std::int16_t index,
                                          std::int32_t kind) const {
    return isPlayer(player) ? impl_->store.info(player, index, kind) : QString();
}

void PlayerEngine::PlaylistInsertFile(std::int16_t player, const QString& path,
                                      std::int16_t index) {
    PlaylistInsertFiles(player, {path}, index);
}

std::int32_t PlayerEngine::PlaylistInsertFiles(std::int16_t player, const QStringList& paths,
                                               std::int16_t index) {
    if (!isPlayer(player)) return 1;
    return impl_->attempt([&] { impl_->store.insert(player, paths, index); });
}

void PlayerEngine::PlaylistRemoveItem(std::int16_t player, std::int16_t index) {
    if (!isPlayer(player)) return;
    impl_->store.list(player).remove(index);
    impl_->transport(player).followList();
}

void PlayerEngine::PlaylistMoveItem(std::int16_t player, std::int16_t from, std::int16_t to) {
    if (isPlayer(player)) impl_->store.list(player).move(from, to);
}

void PlayerEngine::PlaylistPrefer(std::int16_t player, std::int16_t first, std::int16_t last) {
    if (isPlayer(player)) impl_->store.prefer(player, first, last);
}

std::int16_t PlayerEngine::PlaylistNowPlaying(std::int16_t player) const {
    return isPlayer(player) ? std::int16_t(impl_->transport(player).nowPlaying())
                            : std::int16_t(-1);
}

void PlayerEngine::PlaylistPlayItem(std::int16_t player, std::int16_t index) {
    if (isPlayer(player)) impl_->playItem(player, index);
}

void PlayerEngine::PlaylistNext(std::int16_t player) {
    if (isPlayer(player)) impl_->step(player, 1);
}

void PlayerEngine::PlaylistPrevious(std::int16_t player) {
    if (isPlayer(player)) impl_->step(player, -1);
}

void PlayerEngine::Forward(std::int16_t player) {
    if (isPlayer(player)) impl_->transport(player).seekBy(kStepMs);
}

void PlayerEngine::Rewind(std::int16_t player) {
    if (isPlayer(player)) impl_->transport(player).seekBy(-kStepMs);
}

void PlayerEngine::StopPlayer(std::int16_t player) {
    if (isPlayer(player)) impl_->stop(player);
}

void PlayerEngine::PausePlayer(std::int16_t player) {
    if (isPlayer(player)) impl_->transport(player).pause();
}

void PlayerEngine::ResumePlayer(std::int16_t player) {
    if (isPlayer(player)) impl_->transport(player).resume();
}

std::int32_t PlayerEngine::GetPlayerStatus(std::int16_t player) const {
    return isPlayer(player) ? impl_->transport(player).status() : StatusStopped;
}

void PlayerEngine::SetVolume(std::int16_t player, std::int16_t level) {
    if (isPlayer(player)) impl_->voice(player).channel().setVolume(gainOfLevel(level));
}

void PlayerEngine::FadePlayer(std::int16_t player, std::int16_t fromLevel, std::int16_t toLevel,
                              std::int32_t milliseconds) {
    if (isPlayer(player))
        impl_->fade(player, clampLevel(fromLevel), clampLevel(toLevel), std::max(milliseconds, 0));
}

std::int16_t PlayerEngine::PositionUnit() const {
    return impl_->unit;
}

void PlayerEngine::SetPositionUnit(std::int16_t unit) {
    impl_->unit = unit;
}

std::int32_t PlayerEngine::GetPosition(std::int16_t player) const {
    if (!isPlayer(player)) return -1;
    const Transport& transport = impl_->transport(player);
    return impl_->unit == UnitPercent ? transport.positionPercent()
                                      : std::int32_t(transport.positionMs());
}

QString PlayerEngine::GetFormattedPosition(std::int16_t player, std::int32_t, std::int32_t) const {
    if (!isPlayer(player) || !impl_->transport(player).isLoaded()) return {};
    // Whole seconds gone by, as a clock shows them; the length as the list shows it.
    const std::int64_t seconds = impl_->transport(player).positionMs() / 1000;
    const QString position = formatDuration(seconds * 1000);
    const QString length = formatDuration(impl_->transport(player).lengthMs());
    return length.isEmpty() ? position : position + QStringLiteral(" / ") + length;
}

void PlayerEngine::Seek(std::int16_t player, std::int32_t position) {
    if (!isPlayer(player)) return;
    Transport& transport = impl_->transport(player);
    if (impl_->unit == UnitPercent)
        transport.seekPercent(position);
    else
        transport.seekMs(position);
}

std::int64_t PlayerEngine::PositionMs(std::int16_t player) const {
    return isPlayer(player) ? impl_->transport(player).positionMs() : -1;
}

void PlayerEngine::SeekMs(std::int16_t player, std::int64_t position) {
    if (isPlayer(player)) impl_->transport(player).seekMs(position);
}

std::int64_t PlayerEngine::LengthMs(std::int16_t player) const {
    return isPlayer(player) ? impl_->transport(player).lengthMs() : -1;
}

std::shared_ptr<const audio::dsp::Peaks> PlayerEngine::Peaks(std::int16_t player) const {
    if (!isPlayer(player)) return nullptr;
    const QString path = impl_->transport(player).path();
    return path.isEmpty() ? nullptr : impl_->peaks(player).peaks(path);
}

bool PlayerEngine::Spectrum(std::int16_t player, std::span<float> bands) const {
    std::ranges::fill(bands, 0.0F);
    if (!isPlayer(player) || impl_->transport(player).status() != StatusPlaying) return false;
    std::array<float, audio::dsp::Spectrum::kWindow> heard;
    impl_->voice(player).channel().copyHeard(heard);
    impl_->spectrum.analyse(heard, impl_->deviceRate(), bands);
    return true;
}

void PlayerEngine::ReleaseFile(const QString& path) {
    impl_->release(platform::absolutePath(path));
}

void PlayerEngine::AcquireFile(const QString& path) {
    impl_->acquire(platform::absolutePath(path));
}

bool PlayerEngine::IsReady(std::size_t frames) const {
    return impl_->voice(0).isReady(frames) && impl_->voice(1).isReady(frames);
}

QString PlayerEngine::LastError() const {
    return impl_->lastError;
}

QString PlayerEngine::OutputName() const {
    return impl_->outputName();
}

}  // namespace player

// Here and not with the other classes': a program without a player then needs no sound device.
#include "moc_PlayerEngine.cpp"  // NOLINT(bugprone-suspicious-include)
