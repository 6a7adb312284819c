// SPDX-License-Identifier: GPL-3.0-or-later
#include "player/engine/PlayerEngine.h"

#include <algorithm>

#include "platform/Error.h"
#include "player/engine/PlaylistStore.h"

namespace player {

class PlayerEngine::Impl {
  public:
    PlaylistStore store;
    QString lastError;
    std::int16_t unit = UnitMilliseconds;

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
};

PlayerEngine::PlayerEngine(QObject* parent) : QObject(parent), impl_(std::make_unique<Impl>()) {
    connect(&impl_->store, &PlaylistStore::infoChanged, this, &PlayerEngine::ItemInfoChanged);
}
PlayerEngine::~PlayerEngine() = default;

namespace {
bool isPlayer(int player) {
    return player >= 0 && player < kPlayers;
}
}  // namespace

void PlayerEngine::InitEngine(std::int16_t, std::intptr_t, std::int16_t, std::int16_t, std::int16_t,
                              std::int16_t) {}
void PlayerEngine::LoadSound(std::int16_t, const QString&) {}
void PlayerEngine::PlaySound(std::int16_t) {}
void PlayerEngine::SetPlayerFlag(std::int16_t, bool) {}

std::int32_t PlayerEngine::PlaylistLoad(std::int16_t player, const QString& path,
                                        std::int32_t replace) {
    if (!isPlayer(player)) return 1;
    return impl_->attempt([&] { impl_->store.load(player, path, replace != 0); });
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
    if (isPlayer(player)) impl_->store.list(player).remove(index);
}

void PlayerEngine::PlaylistMoveItem(std::int16_t player, std::int16_t from, std::int16_t to) {
    if (isPlayer(player)) impl_->store.list(player).move(from, to);
}

void PlayerEngine::PlaylistPrefer(std::int16_t player, std::int16_t first, std::int16_t last) {
    if (isPlayer(player)) impl_->store.prefer(player, first, last);
}

std::int16_t PlayerEngine::PlaylistNowPlaying(std::int16_t) const {
    return -1;
}
void PlayerEngine::PlaylistPlayItem(std::int16_t, std::int16_t) {}
void PlayerEngine::PlaylistNext(std::int16_t) {}
void PlayerEngine::PlaylistPrevious(std::int16_t) {}
void PlayerEngine::Forward(std::int16_t) {}
void PlayerEngine::Rewind(std::int16_t) {}
void PlayerEngine::StopPlayer(std::int16_t) {}
void PlayerEngine::PausePlayer(std::int16_t) {}
void PlayerEngine::ResumePlayer(std::int16_t) {}
std::int32_t PlayerEngine::GetPlayerStatus(std::int16_t) const {
    return StatusStopped;
}
void PlayerEngine::SetVolume(std::int16_t, std::int16_t) {}
void PlayerEngine::FadePlayer(std::int16_t, std::int16_t, std::int16_t, std::int32_t) {}
std::int16_t PlayerEngine::PositionUnit() const {
    return impl_->unit;
}
void PlayerEngine::SetPositionUnit(std::int16_t unit) {
    impl_->unit = unit;
}
std::int32_t PlayerEngine::GetPosition(std::int16_t) const {
    return -1;
}
QString PlayerEngine::GetFormattedPosition(std::int16_t, std::int32_t, std::int32_t) const {
    return {};
}
void PlayerEngine::Seek(std::int16_t, std::int32_t) {}
std::int64_t PlayerEngine::LengthMs(std::int16_t) const {
    return -1;
}
std::shared_ptr<const audio::dsp::Peaks> PlayerEngine::Peaks(std::int16_t) const {
    return nullptr;
}
bool PlayerEngine::Spectrum(std::int16_t, std::span<float> bands) const {
    std::ranges::fill(bands, 0.0F);
    return false;
}
void PlayerEngine::ReleaseFile(const QString&) {}
void PlayerEngine::AcquireFile(const QString&) {}
QString PlayerEngine::LastError() const {
    return impl_->lastError;
}
QString PlayerEngine::OutputName() const {
    return {};
}

}  // namespace player
