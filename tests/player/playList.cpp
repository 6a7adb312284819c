// SPDX-License-Identifier: GPL-3.0-or-later
// Plays files through the sound device that the environment names, for a listener outside.
// usage: play_list [--disturb] FILE...
// With --disturb the first file is paused once it is a second in, resumed, and sought to its start.
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

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QStringList files = QCoreApplication::arguments().mid(1);
    const bool disturbed = files.removeAll(QStringLiteral("--disturb")) > 0;
    player::PlayerEngine engine;
    bool ended = false;
    QObject::connect(&engine, &player::PlayerEngine::PlaybackEnded, [&] { ended = true; });
    engine.PlaylistInsertFiles(0, files, 0);
    engine.PlaylistPlayItem(0, 0);
    if (disturbed) disturb(engine);
    waitUntil([&] { return !engine.OutputName().isEmpty(); });
    std::printf("output: %s\n", qPrintable(engine.OutputName()));
    return waitUntil([&] { return ended; }) ? 0 : 1;
}
