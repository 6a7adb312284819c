// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include <QObject>
#include <QString>

namespace effects {

/// What flow asks of an editor engine: AudioEditor is the real one, and a test puts its own in its
/// place by construction. Positions are frames at the loaded file's own rate; levels are percent.
/// Every operation throws platform::Error with a sentence for a person and leaves sound, selection
/// and target as they were. An instance belongs to one thread.
class Editor : public QObject {
    Q_OBJECT
  public:
    using QObject::QObject;

    /// The folder for scratch files; the system's own where none was set.
    virtual void SetTemporaryFolder(const QString& folder) = 0;

    /// Opens, indexes and test-decodes a file. After an error the engine is empty, so that a later
    /// Save fails instead of writing another file's sound.
    virtual void Load(const QString& path) = 0;
    /// Forgets the sound, the selection and the output format. Never fails.
    virtual void CloseSound() noexcept = 0;

    /// Writes the selected range (selectionOnly and an active selection) or the whole sound to a
    /// temporary beside the target and renames it over the target. The last argument is ignored.
    /// Refuses a source that was changed by others since it was loaded, and whatever it could not
    /// carry over. After a save over the loaded file itself that file is the loaded sound, as if
    /// loaded anew but with the selection kept.
    virtual void Save(const QString& path, bool selectionOnly, int reserved) = 0;
    /// What had been asked for and the last successful Save therefore does not hold, as a sentence
    /// for the user; mostly empty.
    virtual QString SaveNotice() const = 0;

    // The selection: a range of frames, stored as given.
    virtual void SetSelectionActive(bool active) = 0;
    virtual void SetSelectionStart(std::int32_t position) = 0;
    virtual void SetSelectionEnd(std::int32_t position) = 0;
    virtual std::int32_t GetLength() const = 0;  ///< frames; 0 without a sound
    /// The nearest frame, not clamped.
    virtual std::int32_t TimeToPosition(std::int32_t milliseconds) const = 0;
    virtual void SelectWholeFile() = 0;  ///< active, 0 .. GetLength()

    // Effects on the part of the selection that lies inside the sound. No active selection, or none
    // of it inside the sound, is an error. A selection end that was the sound's end stays the
    // sound's end when the length changes; nothing else of the selection does.

    /// The gain runs in a straight line; the first frame has startPercent, the last endPercent.
    virtual void Fade(float startPercent, float endPercent) = 0;
    virtual void Amplify(float percent) = 0;
    /// The highest absolute sample becomes `percent` of full scale: of all channels together where
    /// they are linked, else of each channel by itself. Silence stays silence, and so does what has
    /// no sample above -60 dBFS, dither for instance: SaveNotice() says so.
    virtual void Normalize(float percent, bool linkedChannels) = 0;
    /// At the selection start, whether or not the selection is active; the sound grows.
    virtual void InsertSilence(std::int32_t milliseconds) = 0;
    /// Delay = time × 100 ms, depth, gain and rate in percent, cutoff in Hz, count repeats; see
    /// audio::dsp::Echo. The length stays: the tail is cut at the selection's end.
    virtual void Echo(float time, float depth, float gain, float rate, float cutoff,
                      std::int32_t count) = 0;
    /// Cuts what is silent at the ends of the range: windows whose loudness lies more than
    /// |threshold| LU below the range's own and below -50 LUFS; a cut that does not fall on silence
    /// gets a fade of 5 ms. mode 2 = both ends, 1 = the start, 0 = nothing.
    virtual void TrimSilence(float threshold, float windowMs, std::int32_t mode) = 0;
    virtual void DeleteSelection() = 0;
    /// Frame k of the file, brought to the sound's rate and channels, is added at the selection
    /// start + k, up to the selection's end. A selection that begins before the sound begins at 0
    /// instead; what of the file then reaches past the sound's end is appended, so that nothing of
    /// either is lost. The file must stay until the sound is saved.
    virtual void MixFile(const QString& path, float soundPercent, float filePercent) = 0;

    // For the saves that follow, until CloseSound.

    /// PCM of 8 (unsigned) or 16 bits.
    virtual void SetOutputFormatWav(std::int32_t rate, std::int32_t channels,
                                    std::int32_t bits) = 0;
    /// The nearest that MP3 has to what is asked.
    virtual void SetOutputFormatMp3(std::int32_t rate, std::int32_t kbps,
                                    std::int32_t channels) = 0;
    /// Whether a save carries the metadata. True at every Load.
    virtual void SetKeepTags(bool keep) = 0;

  Q_SIGNALS:
    /// 0 to 100, on the thread that called the operation; at least every 50 ms during an operation
    /// that takes longer than that, ending with 100.
    void Progress(int percent);
};

}  // namespace effects
