// SPDX-License-Identifier: GPL-3.0-or-later
// Plays files through the sound device that the environment names, for a listener outside.
// usage: play_list [--disturb | --frozen] FILE...
// With --disturb the first file is paused once it is a second in, resumed, and sought to its start.
// With --frozen each output is named when it takes over, until there is none but the null output,
// and that has gone on for a while.
#include <cstdio>

#include <QCoreApplication>
#include <QTest>

#include "player/engine/PlayerEngine.h"

namespace {

bool waitUntil(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, 600000);
}

void disturb(player::PlayerEngine& engine) {
    waitUntil([&] { return engine.GetPosition(0) > 1000; });
    engine.PausePlayer(0);
    const auto held = engine.GetPosition(0);
    waitUntil([&, looks = 0]() mutable { return ++looks > 40; });
    std::printf("paused at %d ms, still at %d ms\n", held, engine.GetPosition(0));
    engine.ResumePlayer(0);
    waitUntil([&] { return engine.GetPosition(0) > held + 700; });
    engine.Seek(0, 0);
}

/// The name of what the sound goes to, once it is another one.
QString nextOutput(const player::PlayerEngine& engine, const QString& last) {
    waitUntil([&] { return !engine.OutputName().isEmpty() && engine.OutputName() != last; });
    const auto from = engine.GetPosition(0);
    waitUntil([&] { return engine.GetPosition(0) > from + 500; });
    std::printf("output: %s\n", qPrintable(engine.OutputName()));
    std::fflush(stdout);
    return engine.OutputName();
}

int seeFrozen(player::PlayerEngine& engine) {
    const QString device = nextOutput(engine, {});
    const auto before = engine.GetPosition(0);
    nextOutput(engine, device);
    std::printf("it played on from %d ms to %d ms\n", before, engine.GetPosition(0));
    std::fflush(stdout);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QStringList files = QCoreApplication::arguments().mid(1);
    const bool disturbed = files.removeAll(QStringLiteral("--disturb")) > 0;
    const bool frozen = files.removeAll(QStringLiteral("--frozen")) > 0;
    player::PlayerEngine engine;
    bool ended = false;
    QObject::connect(&engine, &player::PlayerEngine::PlaybackEnded, [&] { ended = true; });
    engine.PlaylistInsertFiles(0, files, 0);
    engine.PlaylistPlayItem(0, 0);
    if (frozen) return seeFrozen(engine);
    if (disturbed) disturb(engine);
    waitUntil([&] { return !engine.OutputName().isEmpty(); });
    std::printf("output: %s\n", qPrintable(engine.OutputName()));
    return waitUntil([&] { return ended; }) ? 0 : 1;
}
