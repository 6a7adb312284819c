// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

#include <QString>

#include "effects/engine/Editor.h"

namespace audio::edit {
struct SaveReport;
}

namespace effects {

/// The editor engine: one loaded file, edited as a list of segments and saved in place. It never
/// holds the whole sound in memory and never writes into its source. Each call runs its work on
/// worker threads and returns when it is done, raising Progress on the calling thread meanwhile (at
/// least every 50 ms); any number of instances can work at the same time.
///
/// An operation that changes the sound's level or length only notes that in the edit list; sound is
/// read where something has to be measured (Normalize, TrimSilence) and when it is saved.
///
/// From within Progress only CloseSound may be called: the operation in hand then ends with an
/// error, unless it is a Save that is complete already. Any other operation throws there.
class AudioEditor : public Editor {
    Q_OBJECT
  public:
    explicit AudioEditor(QObject* parent = nullptr);
    ~AudioEditor() override;

    void SetTemporaryFolder(const QString& folder) override;
    QString TemporaryFolder() const;

    void Load(const QString& path) override;
    void CloseSound() noexcept override;
    bool HasSound() const;

    void Save(const QString& path, bool selectionOnly, int reserved = 0) override;
    /// How the last successful Save went about it: what was copied and what was encoded.
    const audio::edit::SaveReport& LastSaveReport() const;
    QString SaveNotice() const override;

    void SetSelectionActive(bool active) override;
    bool SelectionActive() const;
    void SetSelectionStart(std::int32_t position) override;
    std::int32_t SelectionStart() const;
    void SetSelectionEnd(std::int32_t position) override;
    std::int32_t SelectionEnd() const;
    std::int32_t GetLength() const override;
    std::int32_t TimeToPosition(std::int32_t milliseconds) const override;
    void SelectWholeFile() override;

    void Fade(float startPercent, float endPercent) override;
    void Amplify(float percent) override;
    void Normalize(float percent, bool linkedChannels) override;
    void InsertSilence(std::int32_t milliseconds) override;
    void Echo(float time, float depth, float gain, float rate, float cutoff,
              std::int32_t count) override;
    void TrimSilence(float threshold, float windowMs, std::int32_t mode) override;
    void DeleteSelection() override;
    void MixFile(const QString& path, float soundPercent, float filePercent) override;

    void SetOutputFormatWav(std::int32_t rate, std::int32_t channels, std::int32_t bits) override;
    void SetOutputFormatMp3(std::int32_t rate, std::int32_t kbps, std::int32_t channels) override;
    void SetKeepTags(bool keep) override;

  private:
    class Impl;
    std::shared_ptr<Impl> impl_;  // outlives the editor while an operation is under way
};

}  // namespace effects
