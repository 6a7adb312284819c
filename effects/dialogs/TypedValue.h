// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>

class QSlider;

namespace effects {

/// Lets a number be typed while a slider has the focus: digits that follow each other quickly form
/// one number, and the slider goes there as soon as the number lies in its range (a number above
/// the range goes to its maximum). Lives as long as the slider. Window thread.
class TypedValue : public QObject {
    Q_OBJECT
  public:
    explicit TypedValue(QSlider* slider);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool type(const QString& character);

    QSlider* slider_;
    QString digits_;
    QElapsedTimer sinceLast_;
};

}  // namespace effects
