// SPDX-License-Identifier: GPL-3.0-or-later
#include "lists/NarrowReading.h"

#include <algorithm>
#include <utility>

#include <QLocale>

namespace lists {
namespace {

// Lines that are looked up although they can be read as most others are, and lines that are looked
// up in vain while none has named a file yet.
constexpr int confirmed = 64;
constexpr int inVain = 200;

/// The encoding that lists without any mark had on Windows machines of this language.
const char* narrowEncodingOf(QLocale::Language language) {
    switch (language) {
        case QLocale::Russian:
        case QLocale::Ukrainian:
        case QLocale::Belarusian:
        case QLocale::Bulgarian:
        case QLocale::Macedonian:
        case QLocale::Serbian:
            return "windows-1251";
        case QLocale::Polish:
        case QLocale::Czech:
        case QLocale::Slovak:
        case QLocale::Hungarian:
        case QLocale::Croatian:
        case QLocale::Slovenian:
        case QLocale::Romanian:
            return "windows-1250";
        case QLocale::Greek:
            return "windows-1253";
        case QLocale::Turkish:
            return "windows-1254";
        case QLocale::Hebrew:
            return "windows-1255";
        case QLocale::Arabic:
        case QLocale::Persian:
            return "windows-1256";
        case QLocale::Japanese:
            return "Shift_JIS";
        case QLocale::Korean:
            return "windows-949";
        case QLocale::Chinese:
            return "GBK";
        default:
            return "windows-1252";
    }
}

// What lists are met in, besides that of the user's language.
constexpr const char* otherEncodings[] = {
    "windows-1252", "windows-1251", "Shift_JIS",    "GBK",          "Big5",         "windows-949",
    "windows-1250", "windows-1253", "windows-1254", "windows-1255", "windows-1256", "UTF-8"};

bool isAscii(const QByteArray& line) {
    return std::none_of(line.begin(), line.end(),
                        [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

}  // namespace

NarrowReading::NarrowReading(Encoding first, NamesFile namesFile)
    : namesFile_(std::move(namesFile)), candidates_{{std::move(first)}} {
    const auto add = [this](const std::optional<Encoding>& encoding) {
        const auto isThere = [&](const Candidate& c) { return c.encoding == *encoding; };
        if (encoding && std::none_of(candidates_.begin(), candidates_.end(), isThere))
            candidates_.push_back({*encoding});
    };
    add(Encoding::named(narrowEncodingOf(QLocale::system().language())));
    for (const char* name : otherEncodings) add(Encoding::named(name));
    add(Encoding::fileName());
}

const NarrowReading::Candidate& NarrowReading::best() const {
    return *std::max_element(
        candidates_.begin(), candidates_.end(),
        [](const Candidate& a, const Candidate& b) { return a.named < b.named; });
}

std::optional<Encoding> NarrowReading::look(const QByteArray& line) {
    if (isAscii(line)) return std::nullopt;
    ++lines_;
    inFirst_ += candidates_.front().encoding.decode(line).has_value();
    const Encoding expected = best().encoding;
    const bool readable = expected.decode(line).has_value();
    if (readable && lines_ > confirmed) return std::nullopt;
    if (named_ == 0 && lines_ > inVain) return std::nullopt;
    const auto names = [&](const Encoding& encoding) {
        const std::optional<QString> text = encoding.decode(line);
        return text && namesFile_(*text);
    };
    const auto found = [&](Candidate& candidate) {
        ++named_;
        ++candidate.named;
        return candidate.encoding;
    };
    for (Candidate& candidate : candidates_)
        if (candidate.encoding == expected && names(expected)) return found(candidate);
    for (Candidate& candidate : candidates_)
        if (candidate.encoding != expected && names(candidate.encoding)) return found(candidate);
    return std::nullopt;
}

Encoding NarrowReading::main() const {
    if (named_ > 0) return best().encoding;
    const bool mostInFirst = 2 * inFirst_ > lines_ || lines_ == 0;
    return candidates_[mostInFirst ? 0 : 1].encoding;
}

Encoding NarrowReading::likeliest(const QByteArray& line) const {
    for (const Encoding& encoding : {main(), candidates_[0].encoding, candidates_[1].encoding})
        if (encoding.decode(line)) return encoding;
    return Encoding::windows1252();
}

}  // namespace lists
