// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/CopyFiles.h"

#include <atomic>
#include <exception>
#include <memory>

#include <QEventLoop>
#include <QThread>

#include "lists/ListText.h"
#include "lists/Names.h"
#include "platform/Paths.h"
#include "platform/ResumeNext.h"
#include "platform/file/Copy.h"
#include "platform/file/Replacement.h"
#include "ports/EventPump.h"
#include "ports/FileList.h"
#include "ports/ProgressBar.h"

namespace handoff {
namespace {

/// Copies one file on a worker thread while this thread handles its events. `progress` is told the
/// fraction done, on this thread. Returns false where the program ended meanwhile and the copy was
/// abandoned. Throws platform::Error.
bool copyWhileYielding(const QString& source, const QString& target,
                       const std::function<void(double)>& progress) {
    QEventLoop events;
    std::atomic<bool> abandoned = false;  // set here, read by the worker
    std::exception_ptr failure;           // the worker's; read when it has finished
    const auto tell = [&](std::int64_t copied, std::int64_t total) {
        const double done = total > 0 ? double(copied) / double(total) : 1.0;
        QMetaObject::invokeMethod(
            &events, [&progress, done] { progress(done); }, Qt::QueuedConnection);
        return !abandoned;
    };
    const std::unique_ptr<QThread> worker(QThread::create([&] {
        try {
            platform::file::copy(platform::toPath(source), platform::toPath(target),
                                 platform::file::Existing::Replace, tell,
                                 platform::file::Sync::Now);
        } catch (...) {
            failure = std::current_exception();
        }
    }));
    QObject::connect(worker.get(), &QThread::finished, &events, &QEventLoop::quit);
    worker->start();
    events.exec();
    // The loop ends before the worker only where the whole program ends.
    abandoned = !worker->isFinished();
    worker->wait();
    if (abandoned) return false;
    if (failure) std::rethrow_exception(failure);
    return true;
}

/// The list of a project while its files are being copied: nothing of it is there before its end.
class ProjectList {
  public:
    explicit ProjectList(const QString& path)
        : replaces_(lists::isFile(path)), file_(platform::toPath(path)) {}

    void add(const QString& name) { lines_ += lists::encodeLine(projectListLine(name)); }
    void end(bool all) {
        if (!all && replaces_) return;
        file_.write(lines_.data(), static_cast<std::size_t>(lines_.size()));
        file_.commit();
    }

  private:
    const bool replaces_;
    platform::file::Replacement file_;
    QByteArray lines_;
};

}  // namespace

QString projectListLine(const QString& name) {
    return name.startsWith(QLatin1Char('#')) ? QLatin1Char('.') + platform::nativeSeparator() + name
                                             : name;
}

bool copyFiles(const ports::Ports& ports, const QString& target, const Copied& copied) {
    const int rows = ports.list.rowCount();
    ports.bar.setMaximum(rows - 1);
    ports.bar.setValue(0);
    ports.bar.setShown(true);
    for (int entry = 0; entry < rows && !ports.events.closing(); ++entry) {
        const QString source = ports.list.entryPath(entry);
        const QString copy = target + ports.list.entryName(entry);
        if (!copyWhileYielding(source, copy, [&](double done) { ports.bar.setFraction(1 + done); }))
            return false;
        ports.events.yield();
        if (copied) copied(entry);
        ports.bar.setValue(entry);
    }
    ports.events.yield();
    return !ports.events.closing();
}

bool copyProject(const ports::Ports& ports, const QString& folder, const Copied& copied) {
    ProjectList list(folder + projectListName);
    const auto both = [&](int entry) {
        list.add(ports.list.entryName(entry));
        if (copied) copied(entry);
    };
    bool all = false;
    try {
        all = copyFiles(ports, folder, both);
    } catch (const std::exception&) {
        platform::resumeNext([&] { list.end(false); });
        throw;
    }
    list.end(all);
    return all;
}

}  // namespace handoff
