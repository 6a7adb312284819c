// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <stop_token>

#include <QObject>

namespace playlist {

/// Fetches from the disk what the list's commands need (a list that is read, folders that are
/// walked) on a worker, one job after the other; their answers are taken on the window thread, in
/// the order in which the jobs were added. A disk that does not answer keeps nobody waiting but the
/// jobs behind. Window thread.
class DiskQueue : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool busy READ busy)
  public:
    /// What is left to be done with what was fetched; called on the window thread.
    using Answer = std::function<void()>;
    /// Runs on the worker, and ends early where it is asked to. What it throws is thrown again
    /// where its answer would be taken.
    using Job = std::function<Answer(const std::stop_token&)>;

    explicit DiskQueue(QObject* parent = nullptr);
    /// What has not been answered never will be. Waits a second at most for the job in hand.
    ~DiskQueue() override;

    /// Where everything is fetched within the time that nobody notices (100 ms), the answers are
    /// taken before this returns; else by an event. Never from within another answer.
    void add(Job job);

    /// While held, as long as the list must not change, answers are kept back.
    void setHeld(bool held);
    /// Whether there is a job or an answer left.
    bool busy() const;

  private:
    struct Shared;
    bool takeNext();

    std::shared_ptr<Shared> shared_;
    std::stop_source stop_;
    bool held_ = false;
    bool answering_ = false;
};

}  // namespace playlist
