// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Report.h"

#include <algorithm>
#include <sstream>

#include <QJsonDocument>
#include <QStringList>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/Invocation.h"

using namespace Qt::Literals::StringLiterals;
using cli::Report;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

namespace {

struct Streams {
    std::ostringstream out;
    std::ostringstream err;
};

TEST(Report, PlainLinesGoToTheirStreams) {
    Streams streams;
    Report report(Report::Style::Plain, streams.out, streams.err);
    report.begin(3);
    report.progress(0, 0.5);
    report.done(u"/m/a.wav"_s);
    report.done(u"/m/b.wav"_s, u"/out/b.wav"_s);
    report.failed(u"/m/c.wav"_s, u"/m/c.wav cannot be read."_s);
    report.end();
    EXPECT_EQ(streams.out.str(),
              "done: /m/a.wav\ndone: /m/b.wav -> /out/b.wav\n2 files done, 1 failed.\n");
    EXPECT_EQ(streams.err.str(), "failed: /m/c.wav cannot be read.\n");
    EXPECT_EQ(report.failures(), 1U);
}

TEST(Report, NamesTheFileWhereTheReasonDoesNot) {
    Streams streams;
    Report report(Report::Style::Plain, streams.out, streams.err);
    report.failed(u"/m/c.wav"_s, u"The disk is full."_s);
    EXPECT_EQ(streams.err.str(), "failed: /m/c.wav: The disk is full.\n");
}

TEST(Report, ForProgramsEveryLineIsOneObject) {
    Streams streams;
    Report report(Report::Style::Json, streams.out, streams.err);
    const QString odd = u"/m/\"näme\"\n.wav"_s;
    report.begin(2);
    report.done(odd);
    report.failed(u"/m/c.wav"_s, u"No."_s);
    report.end();
    EXPECT_TRUE(streams.err.str().empty());
    const QStringList lines =
        QString::fromStdString(streams.out.str()).split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3);
    const auto object = [&](int line) {
        return QJsonDocument::fromJson(lines[line].toUtf8()).object();
    };
    EXPECT_EQ(object(0)[u"file"_s], odd);
    EXPECT_EQ(object(0)[u"status"_s], u"done"_s);
    EXPECT_EQ(object(1)[u"reason"_s], u"No."_s);
    EXPECT_EQ(object(2)[u"done"_s], 1);
    EXPECT_EQ(object(2)[u"failed"_s], 1);
}

TEST(Report, ATerminalHasABarBelowTheLinesAndLeavesNoneBehind) {
    Streams streams;
    Report report(Report::Style::Terminal, streams.out, streams.err);
    report.begin(2);
    EXPECT_THAT(streams.out.str(), HasSubstr("0 %  0/2"));
    report.progress(0, 1);
    report.done(u"/m/a.wav"_s);
    EXPECT_THAT(streams.out.str(), HasSubstr("50 %  1/2"));
    report.failed(u"/m/b.wav"_s, u"/m/b.wav cannot be read."_s);
    report.end();
    EXPECT_TRUE(streams.err.str().empty());
    EXPECT_THAT(streams.out.str(), EndsWith("\r\x1b[K1 file done, 1 failed.\n"));
}

TEST(Report, NamesCannotSteerTheTerminal) {
    Streams streams;
    Report report(Report::Style::Terminal, streams.out, streams.err);
    report.done(u"/m/\x1b[2J\nx.wav"_s);
    const std::string shown = streams.out.str();
    EXPECT_THAT(shown, Not(HasSubstr("\x1b[2J")));
    EXPECT_EQ(std::count(shown.begin(), shown.end(), '\n'), 1);
}

TEST(Invocation, TheExitCodeTellsOfFailures) {
    Streams streams;
    cli::Invocation invocation(streams.out, streams.err);
    EXPECT_EQ(invocation.exitCode(), 0);
    invocation.report().done(u"/m/a.wav"_s);
    EXPECT_EQ(invocation.exitCode(), 0);
    invocation.report().failed(u"/m/b.wav"_s, u"No."_s);
    EXPECT_EQ(invocation.exitCode(), 1);
}

}  // namespace
