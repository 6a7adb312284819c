// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <semaphore>

namespace audio::parallel {

/// How many threads shall work side by side: so many as are asked for, or one for each core where
/// that is 0; from 1 to 8, since each needs memory for the sound that it works on.
int threadCount(int asked = 0);

/// What all ordered tasks of the program share, however many files are in work: how many of them
/// run at a time, and how many wait with sound in their hands. Any thread.
class Budget {
  public:
    static Budget& ofProgram();

    /// Whether another task may be begun that is not the first of its row.
    bool allowsMore() const;

    /// One task that was begun and whose result was not taken.
    class Place {
      public:
        Place();
        ~Place();
        Place(const Place&) = delete;
        Place& operator=(const Place&) = delete;
    };
    /// Waits for a core, and holds it.
    class Turn {
      public:
        Turn();
        ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;
    };

  private:
    Budget();
    std::counting_semaphore<> cores_;
    std::atomic<int> places_ = 0;
    int most_;
};

}  // namespace audio::parallel
