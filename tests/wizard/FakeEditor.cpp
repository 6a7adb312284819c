// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/wizard/FakeEditor.h"

#include <initializer_list>

#include "effects/engine/AudioEditor.h"
#include "platform/Error.h"

namespace support {

FakeEditor& FakeEditor::instance() {
    static FakeEditor fake;
    return fake;
}

void FakeEditor::reset() {
    instance() = {};
}

}  // namespace support

namespace {

using support::FakeEditor;

QString text(const QString& value) {
    return value;
}
QString text(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}
template <typename Number>
QString text(Number value) {
    return QString::number(value);
}

template <typename... Arguments>
void record(const char* name, Arguments... arguments) {
    const QStringList texts{text(arguments)...};
    const QString call = QString::fromLatin1(name) + QLatin1Char('(') +
                         texts.join(QStringLiteral(", ")) + QLatin1Char(')');
    auto& fake = FakeEditor::instance();
    fake.calls << call;
    if (fake.during) fake.during(call);
    if (fake.fails && fake.fails(call)) throw platform::Error(call.toStdString() + " failed.");
}

}  // namespace

namespace effects {

class AudioEditor::Impl {};

AudioEditor::AudioEditor(QObject* parent) : QObject(parent) {}
AudioEditor::~AudioEditor() = default;

void AudioEditor::SetTemporaryFolder(const QString& folder) {
    record("SetTemporaryFolder", folder);
}
void AudioEditor::Load(const QString& path) {
    record("Load", path);
}
void AudioEditor::CloseSound() noexcept {
    record("CloseSound");
}
void AudioEditor::Save(const QString& path, bool selectionOnly, int reserved) {
    record("Save", path, selectionOnly, reserved);
}
void AudioEditor::SetSelectionActive(bool active) {
    record("SetSelectionActive", active);
}
void AudioEditor::SetSelectionStart(std::int32_t position) {
    record("SetSelectionStart", position);
}
void AudioEditor::SetSelectionEnd(std::int32_t position) {
    record("SetSelectionEnd", position);
}
std::int32_t AudioEditor::GetLength() const {
    return FakeEditor::instance().length;
}
std::int32_t AudioEditor::TimeToPosition(std::int32_t milliseconds) const {
    return static_cast<std::int32_t>(std::int64_t{milliseconds} * FakeEditor::instance().rate /
                                     1000);
}
void AudioEditor::SelectWholeFile() {
    record("SelectWholeFile");
}
void AudioEditor::Amplify(float percent) {
    record("Amplify", percent);
}
void AudioEditor::InsertSilence(std::int32_t milliseconds) {
    record("InsertSilence", milliseconds);
}
void AudioEditor::Echo(float time, float depth, float gain, float rate, float cutoff,
                       std::int32_t count) {
    record("Echo", time, depth, gain, rate, cutoff, count);
}
void AudioEditor::Fade(float startPercent, float endPercent) {
    record("Fade", startPercent, endPercent);
}
void AudioEditor::Normalize(float percent, bool linkedChannels) {
    record("Normalize", percent, linkedChannels);
}
void AudioEditor::TrimSilence(float threshold, float windowMs, std::int32_t mode) {
    record("TrimSilence", threshold, windowMs, mode);
}
void AudioEditor::DeleteSelection() {
    record("DeleteSelection");
}
void AudioEditor::MixFile(const QString& path, float soundPercent, float filePercent) {
    record("MixFile", path, soundPercent, filePercent);
}
void AudioEditor::SetOutputFormatWav(std::int32_t rate, std::int32_t channels, std::int32_t bits) {
    record("SetOutputFormatWav", rate, channels, bits);
}
void AudioEditor::SetOutputFormatMp3(std::int32_t rate, std::int32_t kbps, std::int32_t channels) {
    record("SetOutputFormatMp3", rate, kbps, channels);
}
void AudioEditor::SetKeepTags(bool keep) {
    record("SetKeepTags", keep);
}

}  // namespace effects
