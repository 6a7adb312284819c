// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/engine/AudioEditor.h"

#include <algorithm>
#include <limits>
#include <utility>

#include <QPointer>

#include "audio/edit/EffectMaterial.h"
#include "audio/edit/Resampled.h"
#include "audio/edit/Saver.h"
#include "audio/mpeg/encode/EncoderSettings.h"
#include "effects/engine/BackgroundWork.h"
#include "effects/engine/EditorState.h"
#include "effects/engine/Measure.h"
#include "platform/Error.h"
#include "platform/Paths.h"

namespace effects {

using audio::FrameRange;
using audio::edit::EditList;
using audio::edit::Work;

class AudioEditor::Impl : public std::enable_shared_from_this<Impl> {
  public:
    explicit Impl(AudioEditor* editor) : owner(editor) {}

    /// Runs a task on a worker while Progress is raised. Only CloseSound may intervene.
    void run(const std::function<void(Work&)>& task);
    /// Throws where Progress is being raised.
    void requireIdle() const;
    /// The loaded sound; throws where there is none. Opens the file again where it has been saved
    /// over.
    Sound& loaded();
    /// Where the sound can be cut without being encoded: between the frames of an MP2 file, which
    /// cannot say that its sound begins or ends within one. Sound that was edited already has none.
    std::int64_t cutGrid() const;
    /// Bits of the file's samples; of floats and lossy sound, what they are good for.
    int depth() const;
    FrameRange range() { return rangeInside(selection, loaded().list.frames()); }
    /// Puts a list of another length in place of the present one.
    void install(EditList list);
    void close() noexcept;

    void save(const QString& path, const EditList& list);
    /// Throws where a file is not the one that was saved.
    void requireSaved(const platform::file::Stamp& present) const;

    QPointer<AudioEditor> owner;
    QString temporaryFolder;
    Sound sound;
    /// What a save put in the place of the file that `sound` was opened from.
    std::optional<platform::file::Stamp> savedOver;
    Selection selection;
    std::optional<audio::Format> output;
    bool keepTags = true;
    audio::edit::SaveReport lastReport;
    std::string notice;          ///< what an operation since Load or Save has left undone
    std::shared_ptr<Work> work;  ///< of the operation in hand, else null
};

void AudioEditor::Impl::requireIdle() const {
    if (work) throw platform::Error("The sound is being worked on; wait until that is done.");
}

void AudioEditor::Impl::run(const std::function<void(Work&)>& task) {
    requireIdle();
    const auto self = shared_from_this();
    const auto mine = std::make_shared<Work>();
    work = mine;
    const auto raise = [self](int percent) {
        if (self->owner) Q_EMIT self->owner->Progress(percent);
    };
    try {
        runInBackground(*mine, raise, [&task, mine] { task(*mine); });
    } catch (...) {
        work.reset();
        throw;
    }
    work.reset();
    if (mine->cancelled()) throw audio::edit::Cancelled();
}

Sound& AudioEditor::Impl::loaded() {
    requireIdle();
    if (!sound) throw platform::Error("No sound is loaded.");
    if (savedOver) {
        const QString path = platform::toQString(sound.source->path());
        Sound reopened;
        run([&](Work&) {
            requireSaved(platform::file::Stamp::of(sound.source->path()));
            reopened = openSound(path);
            requireSaved(reopened.source->stamp());
        });
        sound = reopened;
        savedOver.reset();
    }
    return sound;
}

void AudioEditor::Impl::requireSaved(const platform::file::Stamp& present) const {
    if (present == savedOver) return;
    throw platform::Error("\"" + platform::toUtf8(sound.source->path()) +
                          "\" has been changed by another program since it was saved.");
}

std::int64_t AudioEditor::Impl::cutGrid() const {
    const bool layerTwo = sound.source->format().codec == audio::Codec::Mp2;
    return layerTwo && sound.list.isAllOf(*sound.source) ? 1152 : 1;
}

int AudioEditor::Impl::depth() const {
    const audio::Format& format = sound.source->format();
    const bool floats = format.sampleType == audio::pcm::SampleType::F32 ||
                        format.sampleType == audio::pcm::SampleType::F64;
    if (floats) return 24;
    return format.bitsPerSample > 0 ? format.bitsPerSample : 16;
}

void AudioEditor::Impl::install(EditList list) {
    if (list.frames() > std::numeric_limits<std::int32_t>::max())
        throw platform::Error("The sound would become longer than 2147483647 frames.");
    const std::int32_t before = sound.length();
    sound.list = std::move(list);
    if (selection.end == before) selection.end = sound.length();
}

void AudioEditor::Impl::close() noexcept {
    if (work) work->cancel();
    sound = {};
    savedOver.reset();
    selection = {};
    output.reset();
    notice.clear();
}

void AudioEditor::Impl::save(const QString& path, const EditList& list) {
    if (list.frames() == 0 && sound.source->frames() > 0)
        throw platform::Error("Nothing is left of the sound, so it is not saved.");
    audio::edit::SaveJob job;
    job.list = list;
    job.source = sound.source;
    job.output = output.value_or(sound.source->format());
    job.keepTags = keepTags;
    job.scratchFolder = platform::toPath(temporaryFolder);
    const std::filesystem::path target = platform::toPath(path);
    audio::edit::SaveReport report;
    run([&](Work& progress) { report = audio::edit::save(job, target, progress); });
    report.notice = std::exchange(notice, {});
    lastReport = report;
    if (report.overSource && sound) savedOver = report.written;
}

AudioEditor::AudioEditor(QObject* parent) : Editor(parent), impl_(std::make_shared<Impl>(this)) {}

AudioEditor::~AudioEditor() {
    impl_->close();
}

void AudioEditor::SetTemporaryFolder(const QString& folder) {
    impl_->temporaryFolder = folder;
}

QString AudioEditor::TemporaryFolder() const {
    return impl_->temporaryFolder;
}

void AudioEditor::Load(const QString& path) {
    const auto impl = impl_;
    impl->requireIdle();
    impl->sound = {};
    impl->savedOver.reset();
    impl->selection = {};
    impl->keepTags = true;
    impl->notice.clear();
    Sound opened;
    impl->run([&](Work&) { opened = openSound(path); });
    impl->sound = std::move(opened);
}

void AudioEditor::CloseSound() noexcept {
    impl_->close();
}

bool AudioEditor::HasSound() const {
    return static_cast<bool>(impl_->sound);
}

void AudioEditor::Save(const QString& path, bool selectionOnly, int) {
    const auto impl = impl_;
    const Sound& sound = impl->loaded();
    const bool part = selectionOnly && impl->selection.active;
    impl->save(path, part ? sound.list.slice(impl->range()) : sound.list);
}

const audio::edit::SaveReport& AudioEditor::LastSaveReport() const {
    return impl_->lastReport;
}

QString AudioEditor::SaveNotice() const {
    return QString::fromStdString(impl_->lastReport.notice);
}

void AudioEditor::SetSelectionActive(bool active) {
    impl_->selection.active = active;
}

bool AudioEditor::SelectionActive() const {
    return impl_->selection.active;
}

void AudioEditor::SetSelectionStart(std::int32_t position) {
    impl_->selection.start = position;
}

std::int32_t AudioEditor::SelectionStart() const {
    return impl_->selection.start;
}

void AudioEditor::SetSelectionEnd(std::int32_t position) {
    impl_->selection.end = position;
}

std::int32_t AudioEditor::SelectionEnd() const {
    return impl_->selection.end;
}

std::int32_t AudioEditor::GetLength() const {
    if (!impl_->sound) return 0;
    return impl_->work ? impl_->sound.length() : impl_->loaded().length();
}

std::int32_t AudioEditor::TimeToPosition(std::int32_t milliseconds) const {
    return frameAt(milliseconds, impl_->loaded().list.shape().sampleRate);
}

void AudioEditor::SelectWholeFile() {
    impl_->selection = {true, 0, GetLength()};
}

void AudioEditor::Fade(float startPercent, float endPercent) {
    requireLevel(startPercent);
    requireLevel(endPercent);
    const FrameRange range = impl_->range();
    impl_->loaded().list.applyGain(range, static_cast<double>(startPercent) / 100.0,
                                   static_cast<double>(endPercent) / 100.0);
}

void AudioEditor::Amplify(float percent) {
    Fade(percent, percent);
}

void AudioEditor::Normalize(float percent, bool linkedChannels) {
    requireLevel(percent);
    const auto impl = impl_;
    const FrameRange range = impl->range();
    EditList list = impl->loaded().list;
    float highest = 0;
    impl->run([&](Work& work) {
        const std::vector<float> peaks = measurePeaks(list, range, linkedChannels, work);
        for (std::size_t channel = 0; channel < peaks.size(); ++channel) {
            highest = std::max(highest, peaks[channel]);
            if (countsAsSilence(peaks[channel])) continue;
            const double gain =
                static_cast<double>(percent) / 100.0 / static_cast<double>(peaks[channel]);
            list.applyGain(range, gain, gain,
                           linkedChannels ? audio::edit::allChannels : static_cast<int>(channel));
        }
    });
    impl->install(std::move(list));
    if (countsAsSilence(highest)) impl->notice = notNormalized(highest);
}

void AudioEditor::InsertSilence(std::int32_t milliseconds) {
    if (milliseconds < 0) throw platform::Error("Silence cannot be shorter than 0 ms.");
    const Sound& sound = impl_->loaded();
    const std::int32_t start = impl_->selection.start;
    if (start < 0 || start > sound.length())
        throw platform::Error("The place for the silence lies outside the sound.");
    EditList list = sound.list;
    list.insertSilence(start, TimeToPosition(milliseconds));
    impl_->install(std::move(list));
}

void AudioEditor::Echo(float time, float depth, float gain, float rate, float cutoff,
                       std::int32_t count) {
    for (const float level : {time, depth, rate}) requireLevel(level);
    const FrameRange range = impl_->range();
    EditList list = impl_->loaded().list;
    audio::dsp::EchoSettings settings;
    settings.delay = frameAt(static_cast<std::int32_t>(std::min(time * 100.0F, 60000.0F)),
                             list.shape().sampleRate);
    settings.dry = 1.0 - static_cast<double>(gain) / 100.0;
    settings.depth = static_cast<double>(depth) / 100.0;
    settings.decay = static_cast<double>(rate) / 100.0;
    settings.cutoff = static_cast<double>(cutoff);
    settings.repeats = count;
    list.replace(range, std::make_shared<audio::edit::EchoMaterial>(list.slice(range), settings));
    impl_->install(std::move(list));
}

void AudioEditor::TrimSilence(float threshold, float windowMs, std::int32_t mode) {
    if (mode < 0 || mode > 2) throw platform::Error("Silence is trimmed in the modes 0 to 2.");
    const auto impl = impl_;
    const FrameRange range = impl->range();
    if (mode == 0) return;
    EditList list = impl->loaded().list;
    impl->run([&](Work& work) {
        const SilenceSettings settings{static_cast<double>(threshold),
                                       static_cast<double>(windowMs), impl->depth(),
                                       range.start == 0 ? impl->cutGrid() : 1};
        const AudibleRange audible = measureAudible(list, range, settings, work);
        const auto [start, end] = audible.kept;
        if (audible.soundAtStart) list.applyGain({start, start + audible.fadeFrames}, 0, 1);
        if (mode == 2) {
            if (audible.soundAtEnd) list.applyGain({end - audible.fadeFrames, end}, 1, 0);
            list.erase({end, range.end});
        }
        list.erase({range.start, start});
    });
    impl->install(std::move(list));
}

void AudioEditor::DeleteSelection() {
    const FrameRange range = impl_->range();
    EditList list = impl_->loaded().list;
    list.erase(range);
    impl_->install(std::move(list));
}

void AudioEditor::MixFile(const QString& path, float soundPercent, float filePercent) {
    requireLevel(soundPercent);
    requireLevel(filePercent);
    const auto impl = impl_;
    const FrameRange range = impl->range();
    EditList list = impl->loaded().list;
    const double soundFactor = static_cast<double>(soundPercent) / 100.0;
    audio::edit::MixMaterial::Other other;
    impl->run([&](Work&) { other = openForMix(path, list.shape(), filePercent); });
    const std::int64_t length = list.frames();
    const std::int64_t heard = std::min(other.material->frames(), range.end - range.start);
    const FrameRange both{range.start, range.start + heard};
    if (heard > 0)
        list.replace(
            both, std::make_shared<audio::edit::MixMaterial>(list.slice(both), soundFactor, other));
    if (both.end < range.end) list.applyGain({both.end, range.end}, soundFactor, soundFactor);
    // What a range that begins before the sound was to hold, but the sound is too short for.
    if (impl->selection.start < 0 && range.end == length)
        list.append(other.material, heard, other.factor);
    impl->install(std::move(list));
}

void AudioEditor::SetOutputFormatWav(std::int32_t rate, std::int32_t channels, std::int32_t bits) {
    impl_->output = wavFormat(rate, channels, bits);
}

void AudioEditor::SetOutputFormatMp3(std::int32_t rate, std::int32_t kbps, std::int32_t channels) {
    impl_->output = audio::mpeg::nearestMp3(rate, kbps, channels);
}

void AudioEditor::SetKeepTags(bool keep) {
    impl_->keepTags = keep;
}

}  // namespace effects
