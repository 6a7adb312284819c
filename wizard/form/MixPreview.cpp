// SPDX-License-Identifier: GPL-3.0-or-later
#include "wizard/form/MixPreview.h"

#include <chrono>

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "widgets/Dispatch.h"
#include "widgets/PlainToolTip.h"
#include "wizard/Naming.h"
#include "wizard/form/TimelineView.h"

using namespace Qt::Literals::StringLiterals;

namespace wizard {

namespace {

QLabel* line(const QString& name, Qt::Alignment alignment) {
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(alignment);
    return label;
}

}  // namespace

MixPreview::MixPreview(QWidget* parent)
    : QWidget(parent),
      view_(new TimelineView),
      total_(line(u"lblMixTotal"_s, Qt::AlignLeft)),
      note_(line(u"lblMixNote"_s, Qt::AlignRight)) {
    auto* texts = new QHBoxLayout;
    texts->addWidget(total_);
    texts->addWidget(note_, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addLayout(texts);
    layout->addWidget(view_, 1);
    connect(&scanner_, &TrackScanner::changed, this,
            widgets::guarded(this, &MixPreview::refreshSoon));
    connect(&soon_, &QTimer::timeout, this, widgets::guarded(this, &MixPreview::refresh));
    soon_.setSingleShot(true);
    refresh();
}

void MixPreview::show(const QStringList& paths, const Shape& shape) {
    paths_ = paths;
    shape_ = shape;
    refreshSoon();
}

void MixPreview::setCurrent(int track) {
    current_ = track;
    view_->setCurrent(track);
}

void MixPreview::addFailure(const QString& sentence) {
    if (!failures_.contains(current_)) failures_.insert(current_, sentence);
    refreshSoon();
}

void MixPreview::clearFailures() {
    failures_.clear();
    refreshSoon();
}

void MixPreview::stop() {
    scanner_.stop();
}

void MixPreview::refreshSoon() {
    constexpr std::chrono::milliseconds pause{30};
    if (!soon_.isActive()) soon_.start(pause);
}

// Here and not at every change: thousands of files may be added one by one.
void MixPreview::refresh() {
    scanner_.want(paths_);
    std::vector<double> lengths;
    std::vector<TimelineView::Track> tracks;
    for (const QString& path : paths_) {
        tracks.push_back({bareName(path), scanner_.known(path)});
        lengths.push_back(tracks.back().scan.seconds);
    }
    const Timeline mix = layOut(lengths, shape_.overlap);
    total_->setText(totalText(mix.seconds));
    total_->setStyleSheet(mix.seconds > DiscSeconds ? u"color: #ff7b72;"_s : QString());
    note_->setText(noteText());
    note_->setToolTip(widgets::plainToolTip(failures_.values().join(u'\n')));
    note_->setStyleSheet(failures_.isEmpty() ? QString() : u"color: #ff7b72;"_s);
    view_->setMix(mix, std::move(tracks), shape_.fades, shape_.normalize);
}

QString MixPreview::totalText(double seconds) const {
    const QString disc = clock(DiscSeconds);
    if (seconds > DiscSeconds)
        return u"The mix to come: %1 – %2 more than the %3 of a disc"_s.arg(
            clock(seconds), clock(seconds - DiscSeconds), disc);
    return u"The mix to come: %1 of the %2 of a disc"_s.arg(clock(seconds), disc);
}

QString MixPreview::noteText() const {
    if (failures_.size() == 1) return failures_.first();
    if (!failures_.isEmpty())
        return u"%1 files could not be worked on, the first: %2"_s.arg(failures_.size())
            .arg(failures_.first());
    return shape_.trim ? u"before silence is trimmed"_s : QString();
}

}  // namespace wizard
