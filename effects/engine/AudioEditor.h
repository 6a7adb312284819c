// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

#include <QObject>
#include <QString>

namespace audio::edit {
struct SaveReport;
}

namespace effects {

/// The editor engine: one loaded file, edited as a list of segments and saved in place. It never
/// holds the whole sound in memory and never writes into its source. Positions are frames at the
/// file's own rate; levels are percent. Each call runs its work on worker threads and returns when
/// it is done, raising Progress on the calling thread meanwhile (at least every 50 ms); so an
/// instance belongs to one thread, but any number of instances can work at the same time. Every
/// operation throws platform::Error with a sentence for a person and leaves sound, selection and
/// target as they were.
///
/// An operation that changes the sound's level or length only notes that in the edit list; sound is
/// read where something has to be measured (Normalize, TrimSilence) and when it is saved.
///
/// From within Progress only CloseSound may be called: the operation in hand then ends with an
/// error, unless it is a Save that is complete already. Any other operation throws there.
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
    /// Refuses a source that was changed by others since it was loaded, and whatever it could not
    /// carry over. After a save over the loaded file itself that file is the loaded sound, as if
    /// loaded anew but with the selection kept.
    void Save(const QString& path, bool selectionOnly, int reserved = 0);
    /// How the last successful Save went about it: what was copied and what was encoded.
    const audio::edit::SaveReport& LastSaveReport() const;

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

    // Effects on the part of the selection that lies inside the sound. No active selection, or none
    // of it inside the sound, is an error. A selection end that was the sound's end stays the
    // sound's end when the length changes; nothing else of the selection does.

    /// The gain runs in a straight line; the first frame has startPercent, the last endPercent.
    void Fade(float startPercent, float endPercent);
    void Amplify(float percent);
    /// The highest absolute sample becomes `percent` of full scale: of all channels together where
    /// they are linked, else of each channel by itself. Silence stays silence.
    void Normalize(float percent, bool linkedChannels);
    /// At the selection start, whether or not the selection is active; the sound grows.
    void InsertSilence(std::int32_t milliseconds);
    /// Delay = time × 100 ms, depth, gain and rate in percent, cutoff in Hz, count repeats; see
    /// audio::dsp::Echo. The length stays: the tail is cut at the selection's end.
    void Echo(float time, float depth, float gain, float rate, float cutoff, std::int32_t count);
    /// Cuts what is silent at the ends of the range: windows whose loudness lies more than
    /// |threshold| LU below the range's own. mode 2 = both ends, 1 = the start, 0 = nothing.
    void TrimSilence(float threshold, float windowMs, std::int32_t mode);
    void DeleteSelection();
    /// Frame k of the file, brought to the sound's rate and channels, is added at the selection
    /// start + k, also where that start is negative. The file must stay until the sound is saved.
    void MixFile(const QString& path, float soundPercent, float filePercent);

    // For the saves that follow, until CloseSound.

    /// PCM of 8 (unsigned) or 16 bits.
    void SetOutputFormatWav(std::int32_t rate, std::int32_t channels, std::int32_t bits);
    /// The nearest that MP3 has to what is asked.
    void SetOutputFormatMp3(std::int32_t rate, std::int32_t kbps, std::int32_t channels);
    /// Whether a save carries the metadata. True at every Load.
    void SetKeepTags(bool keep);

  Q_SIGNALS:
    /// 0 to 100, on the thread that called the operation; at least every 50 ms during an operation
    /// that takes longer than that, ending with 100.
    void Progress(int percent);

  private:
    class Impl;
    std::shared_ptr<Impl> impl_;  // outlives the editor while an operation is under way
};

}  // namespace effects
