// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>

#include <QString>
#include <QStringList>

#include "effects/engine/Editor.h"
#include "platform/Error.h"

namespace support {

/// An editor engine for tests where only the order of the calls matters: it writes each call down
/// and does as it is told. It has no sound.
class FakeEditor : public effects::Editor {
  public:
    QStringList calls;
    std::int32_t length = 441000;  ///< frames of whatever is loaded
    std::int32_t rate = 44100;
    QString notice;                                   ///< of the last save
    std::function<bool(const QString& call)> fails;   ///< calls for which it throws
    std::function<void(const QString& call)> during;  ///< run within each call

    void SetTemporaryFolder(const QString& folder) override {
        record("SetTemporaryFolder", folder);
    }
    void Load(const QString& path) override { record("Load", path); }
    void CloseSound() noexcept override { record("CloseSound"); }
    void Save(const QString& path, bool selectionOnly, int reserved) override {
        record("Save", path, selectionOnly, reserved);
    }
    void SetSelectionActive(bool active) override { record("SetSelectionActive", active); }
    void SetSelectionStart(std::int32_t position) override {
        record("SetSelectionStart", position);
    }
    void SetSelectionEnd(std::int32_t position) override { record("SetSelectionEnd", position); }
    void SelectWholeFile() override { record("SelectWholeFile"); }
    void Fade(float startPercent, float endPercent) override {
        record("Fade", startPercent, endPercent);
    }
    void Amplify(float percent) override { record("Amplify", percent); }
    void Normalize(float percent, bool linkedChannels) override {
        record("Normalize", percent, linkedChannels);
    }
    void InsertSilence(std::int32_t milliseconds) override {
        record("InsertSilence", milliseconds);
    }
    void Echo(float time, float depth, float gain, float repeat, float cutoff,
              std::int32_t count) override {
        record("Echo", time, depth, gain, repeat, cutoff, count);
    }
    void TrimSilence(float threshold, float windowMs, std::int32_t mode) override {
        record("TrimSilence", threshold, windowMs, mode);
    }
    void DeleteSelection() override { record("DeleteSelection"); }
    void MixFile(const QString& path, float soundPercent, float filePercent) override {
        record("MixFile", path, soundPercent, filePercent);
    }
    void SetOutputFormatWav(std::int32_t hertz, std::int32_t channels, std::int32_t bits) override {
        record("SetOutputFormatWav", hertz, channels, bits);
    }
    void SetOutputFormatMp3(std::int32_t hertz, std::int32_t kbps, std::int32_t channels) override {
        record("SetOutputFormatMp3", hertz, kbps, channels);
    }
    void SetKeepTags(bool keep) override { record("SetKeepTags", keep); }
    QString SaveNotice() const override { return notice; }
    std::int32_t GetLength() const override { return length; }
    std::int32_t TimeToPosition(std::int32_t milliseconds) const override {
        return static_cast<std::int32_t>(std::int64_t{milliseconds} * rate / 1000);
    }

  private:
    static QString text(const QString& value) { return value; }
    static QString text(bool value) {
        return value ? QStringLiteral("true") : QStringLiteral("false");
    }
    template <typename Number>
    static QString text(Number value) {
        return QString::number(value);
    }

    template <typename... Arguments>
    void record(const char* name, Arguments... arguments) {
        const QStringList texts{text(arguments)...};
        const QString call = QString::fromLatin1(name) + QLatin1Char('(') +
                             texts.join(QStringLiteral(", ")) + QLatin1Char(')');
        calls << call;
        if (during) during(call);
        if (fails && fails(call)) throw platform::Error(call.toStdString() + " failed.");
    }
};

}  // namespace support
