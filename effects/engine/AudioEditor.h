// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

#include <QObject>
#include <QString>

namespace effects {

/// The editor engine: one loaded file, edited as a list of segments and saved in place. It never
/// holds the whole sound in memory and never writes into its source. Positions are frames at the
/// file's own rate; levels are percent. Each call runs its work on worker threads and returns when
/// it is done, raising Progress on the calling thread meanwhile (at least every 50 ms); so an
/// instance belongs to one thread, and calls must not be nested from within Progress. Every
/// operation throws platform::Error with a sentence for a person and leaves sound, selection and
/// target as they were.
class AudioEditor : public QObject {
    Q_OBJECT
  public:
    explicit AudioEditor(QObject* parent = nullptr);
    ~AudioEditor() override;

    /// The folder for scratch files; the system's own where none was set.
    void SetTemporaryFolder(const QString& folder);
    QString TemporaryFolder() const;

    /// Opens, indexes and test-decodes a file. After an error the engine is empty, so that a later
    /// Save fails instead of writing another file's sound.
    void Load(const QString& path);
    /// Forgets the sound, the selection and the output format. Never fails.
    void CloseSound() noexcept;
    bool HasSound() const;

    /// Writes the selected range (selectionOnly and an active selection) or the whole sound to a
    /// temporary beside the target and renames it over the target. The last argument is ignored.
    void Save(const QString& path, bool selectionOnly, int reserved = 0);

    // The selection: a range of frames, stored as given.
    void SetSelectionActive(bool active);
    bool SelectionActive() const;
    void SetSelectionStart(std::int32_t position);
    std::int32_t SelectionStart() const;
    void SetSelectionEnd(std::int32_t position);
    std::int32_t SelectionEnd() const;
    std::int32_t GetLength() const;                                ///< frames; 0 without a sound
    std::int32_t TimeToPosition(std::int32_t milliseconds) const;  ///< nearest frame, not clamped
    void SelectWholeFile();                                        ///< active, 0 .. GetLength()

    // Effects on the part of the selection that lies inside the sound.
    void Fade(float startPercent, float endPercent);
    void Amplify(float percent);
    void Normalize(float percent, bool linkedChannels);
    void InsertSilence(std::int32_t milliseconds);
    /// Delay = time × 100 ms, depth, gain and rate in percent, cutoff in Hz, count repeats.
    void Echo(float time, float depth, float gain, float rate, float cutoff, std::int32_t count);
    void TrimSilence(float threshold, float windowMs, std::int32_t mode);
    void DeleteSelection();
    void MixFile(const QString& path, float soundPercent, float filePercent);

    // For the saves that follow, until CloseSound.
    void SetOutputFormatWav(std::int32_t rate, std::int32_t channels, std::int32_t bits);
    void SetOutputFormatMp3(std::int32_t rate, std::int32_t kbps, std::int32_t channels);
    void SetKeepTags(bool keep);

  Q_SIGNALS:
    /// 0 to 100, on the thread that called the operation; at least every 50 ms during an operation
    /// that takes longer than that, ending with 100.
    void Progress(int percent);

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace effects
