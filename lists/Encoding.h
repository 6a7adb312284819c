// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include <QByteArray>
#include <QString>

namespace lists {

/// One way in which bytes stand for the text of a playlist. It decodes nothing that it would not
/// encode into the same bytes again. A plain value; any thread.
class Encoding {
  public:
    static Encoding utf8() { return Encoding(Form::Utf8); }
    /// UTF-8 in which a byte that belongs to no character stands for itself, as in the file names
    /// of this system (see platform::fromNameBytes). Reads everything.
    static Encoding fileName() { return Encoding(Form::FileName); }
    static Encoding utf16Little() { return Encoding(Form::Utf16Little); }
    static Encoding utf16Big() { return Encoding(Form::Utf16Big); }
    /// Its five unused bytes stand for the controls of their numbers, so it reads everything.
    static Encoding windows1252() { return Encoding(Form::Windows1252); }
    /// By a name that the text library knows ("windows-1251", "Shift_JIS"); nothing for others.
    static std::optional<Encoding> named(const QByteArray& name);

    /// Two bytes to a code unit.
    bool isWide() const { return form_ == Form::Utf16Little || form_ == Form::Utf16Big; }

    /// Nothing where the bytes are no text in this encoding.
    std::optional<QString> decode(const QByteArray& bytes) const;
    /// Nothing where the text has no form in this encoding.
    std::optional<QByteArray> encode(const QString& text) const;

    bool operator==(const Encoding&) const = default;

  private:
    enum class Form { Utf8, FileName, Utf16Little, Utf16Big, Windows1252, Named };
    explicit Encoding(Form form, QByteArray name = {}) : form_(form), name_(std::move(name)) {}

    Form form_;
    QByteArray name_;  // of a Named one
};

}  // namespace lists
