// SPDX-License-Identifier: GPL-3.0-or-later
#include "handoff/CopyFiles.h"

#include <atomic>
#include <exception>
#include <memory>

#include <QEventLoop>
#include <QThread>

#include "platform/Paths.h"
#include "platform/file/Copy.h"

namespace handoff {

QString projectListLine(const QString& name) {
    return name.startsWith(QLatin1Char('#')) ? QLatin1Char('.') + platform::nativeSeparator() + name
                                             : name;
}

bool copyWhileYielding(const CopyItem& item, const QString& target,
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
            platform::file::copy(platform::toPath(item.source),
                                 platform::toPath(target + item.name),
                                 platform::file::Existing::Replace, tell);
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

}  // namespace handoff
