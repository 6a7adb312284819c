// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace ports {

class Boxes;
class EventPump;
class FileList;
class ProgressBar;

/// All that a flow reaches of the one that runs it; each must outlive the flow.
struct Ports {
    FileList& list;
    ProgressBar& bar;
    Boxes& boxes;
    EventPump& events;
};

}  // namespace ports
