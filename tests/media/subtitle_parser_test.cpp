// SPDX-License-Identifier: MIT
// What the text of a SubRip file becomes, whatever is in it.

#include "media/subtitles.h"

#include <gtest/gtest.h>

#include <random>

namespace {

// The cues of a file whose times are given.
std::vector<Subtitle> cue_with_times(const std::string& times) {
    return parse_subtitles("1\n" + times + "\ntext\n\n");
}

TEST(SubtitleParser, TimesAreMicrosecondsAndEndHalfASecondLater) {
    const auto list = cue_with_times("00:00:01,500 --> 00:00:04,000");
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].start, 1500000U);
    EXPECT_EQ(list[0].end, 4500000U);
    EXPECT_EQ(list[0].text, "text\n");
}

TEST(SubtitleParser, HoursCount) {
    const auto list = cue_with_times("12:34:56,789 --> 99:59:59,999");
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].start, (((12ULL * 60 + 34) * 60 + 56) * 1000 + 789) * 1000);
    EXPECT_EQ(list[0].end, (((99ULL * 60 + 59) * 60 + 59) * 1000 + 999) * 1000 + 500000);
}

TEST(SubtitleParser, SpacesAroundNumbersAndTheArrowAreFree) {
    for (const char* times :
         {"0:0:1,5-->0:0:2,6", "  0: 0:\t1, 5   -->\t0:0:2,6 ", "00:00:01,5 --> 00:00:02,6 X1:10",
          "+0:+0:+1,+5 --> +0:+0:+2,+6", "0:0:1,5\r --> 0:0:2,6\r"}) {
        const auto list = cue_with_times(times);
        ASSERT_EQ(list.size(), 1U) << times;
        EXPECT_EQ(list[0].start, 1005000U) << times;
        EXPECT_EQ(list[0].end, 2506000U) << times;
    }
}

TEST(SubtitleParser, LinesOfTimesThatLackSomethingAreDropped) {
    for (const char* times :
         {"", "00:00:01.500 --> 00:00:04.000", "00:00:01,500 -> 00:00:04,000", "00:00:01,500",
          "00:00:01,500 --> 00:00:04", "00:00:01,500 --> 00:00:04,", "00 :00:01,500 --> 0:0:4,0",
          "00:00:01 ,500 --> 00:00:04,000", "00:00:01,500 -- > 00:00:04,000", "-:0:1,5 --> 0:0:2,6",
          "- 0:0:1,5 --> 0:0:2,6", "--0:0:1,5 --> 0:0:2,6", "a:b:c,d --> e:f:g,h"}) {
        EXPECT_TRUE(cue_with_times(times).empty()) << times;
    }
}

TEST(SubtitleParser, DroppedLineOfTimesLeavesTheNextLineAsANumber) {
    const auto list = parse_subtitles("1\nnonsense\n2\n0:0:1,0 --> 0:0:2,0\nfound\n\n");
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].text, "found\n");
}

TEST(SubtitleParser, LinesBeforeANumberAreSkipped) {
    const auto list = parse_subtitles("title\n\n- x\n  -7 and more\n0:0:1,0 --> 0:0:2,0\na\n\n");
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].text, "a\n");
}

TEST(SubtitleParser, LinesOfTextStayApart) {
    const auto list = parse_subtitles(
        "1\n0:0:1,0 --> 0:0:2,0\none\ntwo\nthree\n\n"
        "2\n0:0:3,0 --> 0:0:4,0\nfour\n\n");
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[0].text, "one\ntwo\nthree\n");
    EXPECT_EQ(list[1].text, "four\n");
}

TEST(SubtitleParser, ItalicTagsGo) {
    const auto text = [](const std::string& line) {
        return parse_subtitles("1\n0:0:1,0 --> 0:0:2,0\n" + line + "\n\n").at(0).text;
    };
    EXPECT_EQ(text("<i>Hi</i> there"), "Hi there\n");
    EXPECT_EQ(text("<i></i><i>a</i>\n<i>b</i>"), "a\nb\n");
    EXPECT_EQ(text("<b>bold</b> <I>x</I> <font color=\"red\">y</font>"),
              "<b>bold</b> <I>x</I> <font color=\"red\">y</font>\n");
    EXPECT_EQ(text("<<i>i>"), "<i>\n") << "what a removal joins is not looked at again";
    EXPECT_EQ(text("<</i>i>"), "<i>\n") << "one kind after the other";
    EXPECT_EQ(text("</<i>i>"), "\n") << "the second kind finds what the first one left";
    EXPECT_EQ(text("<i"), "<i\n");
}

TEST(SubtitleParser, CueWithoutText) {
    const auto list = parse_subtitles("1\n0:0:1,0 --> 0:0:2,0\n\n2\n0:0:3,0 --> 0:0:4,0\nb\n\n");
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[0].text, "");
    EXPECT_EQ(list[1].text, "b\n");
}

TEST(SubtitleParser, FileMayEndAnywhere) {
    const std::string file = "1\n0:0:1,0 --> 0:0:2,0\nHello";
    EXPECT_EQ(parse_subtitles(file).at(0).text, "Hello\n");
    EXPECT_EQ(parse_subtitles(file + "\n").at(0).text, "Hello\n");
    EXPECT_EQ(parse_subtitles(file + "\n\n").at(0).text, "Hello\n");
    EXPECT_EQ(parse_subtitles(file + "\n\n\n\n").size(), 1U);
    EXPECT_EQ(parse_subtitles("1\n0:0:1,0 --> 0:0:2,0").at(0).text, "");
    EXPECT_TRUE(parse_subtitles("1\n0:0:1,0 --> 0:0:2,").empty());
    EXPECT_TRUE(parse_subtitles("1\n").empty());
    EXPECT_TRUE(parse_subtitles("1").empty());
    EXPECT_TRUE(parse_subtitles("\n").empty());
    EXPECT_TRUE(parse_subtitles("").empty());
}

TEST(SubtitleParser, WithoutEmptyLinesAllIsOneText) {
    const auto list =
        parse_subtitles("1\n0:0:1,0 --> 0:0:2,0\none\n2\n0:0:3,0 --> 0:0:4,0\ntwo\n\n");
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].text, "one\n2\n0:0:3,0 --> 0:0:4,0\ntwo\n");
}

TEST(SubtitleParser, CarriageReturnsStayAndEndNoCue) {
    const auto list = parse_subtitles(
        "1\r\n00:00:01,500 --> 00:00:04,000\r\none\r\n\r\n"
        "2\r\n00:00:05,000 --> 00:00:06,000\r\ntwo\r\n");
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].start, 1500000U);
    EXPECT_EQ(list[0].end, 4500000U);
    EXPECT_EQ(list[0].text, "one\r\n\r\n2\r\n00:00:05,000 --> 00:00:06,000\r\ntwo\r\n");
}

// The mark is no number; the line of times then stands for one, and the text for the times.
TEST(SubtitleParser, ByteOrderMarkCostsTheFirstCue) {
    const auto list = parse_subtitles(
        "\xEF\xBB\xBF"
        "1\n0:0:1,0 --> 0:0:2,0\none\n\n"
        "2\n0:0:3,0 --> 0:0:4,0\ntwo\n\n");
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].text, "two\n");
}

TEST(SubtitleParser, NumbersOutOfRangeAreCutTo32Bits) {
    // 2^32 + 1 hours are one; 60 x 60 x 2^31 seconds are none.
    EXPECT_EQ(cue_with_times("4294967297:0:0,0 --> 0:0:0,0").at(0).start, 3600000000U);
    EXPECT_EQ(cue_with_times("2147483648:0:0,0 --> 0:0:0,0").at(0).start, 0U);
    // 600,000 hours are more seconds than 31 bits hold.
    const auto wrapped = static_cast<std::uint64_t>((600000LL * 3600 - (1LL << 32)) * 1000000);
    EXPECT_EQ(cue_with_times("600000:0:0,0 --> 600000:0:0,0").at(0).start, wrapped);
    EXPECT_EQ(cue_with_times("600000:0:0,0 --> 600000:0:0,0").at(0).end, wrapped + 500000);
    // Milliseconds come after that, in 64 bits.
    EXPECT_EQ(cue_with_times("0:0:0,2147483647 --> 0:0:0,0").at(0).start, 2147483647000U);
    EXPECT_EQ(cue_with_times("0:0:-1,0 --> 0:0:0,-500").at(0).start,
              static_cast<std::uint64_t>(-1000000LL));
    EXPECT_EQ(cue_with_times("0:0:-1,0 --> 0:0:0,-500").at(0).end, 0U);
    // Beyond 64 bits: the largest or smallest there is, all ones or all zeros below.
    const std::string digits(200, '9');
    EXPECT_EQ(cue_with_times("0:0:0," + digits + " --> 0:0:0,0").at(0).start,
              static_cast<std::uint64_t>(-1000LL));
    EXPECT_EQ(cue_with_times("0:0:0,-" + digits + " --> 0:0:0,0").at(0).start, 0U);
    EXPECT_EQ(cue_with_times("0:0:0,9223372036854775807 --> 0:0:0,0").at(0).start,
              static_cast<std::uint64_t>(-1000LL));
    EXPECT_EQ(cue_with_times("0:0:0,9223372036854775806 --> 0:0:0,0").at(0).start,
              static_cast<std::uint64_t>(-2000LL));
    EXPECT_EQ(cue_with_times("0:0:0,-9223372036854775808 --> 0:0:0,0").at(0).start, 0U);
}

TEST(SubtitleParser, SequenceNumberMayBeAnyNumber) {
    for (const char* number : {"0", "-1", "+3", "99999999999999999999999", " 7", "\t7x", "00"}) {
        const auto list = parse_subtitles(std::string(number) + "\n0:0:1,0 --> 0:0:2,0\na\n\n");
        EXPECT_EQ(list.size(), 1U) << number;
    }
}

TEST(SubtitleParser, LongLinesAreCutAndTheRestOfTheFileCounts) {
    const std::string head = "1\n0:0:1,0 --> 0:0:2,0\n";
    const std::string tail = "\n\n2\n0:0:3,0 --> 0:0:4,0\nafter\n\n";
    for (const std::size_t length : {253U, 254U, 255U, 256U, 511U, 10000U}) {
        const auto list = parse_subtitles(head + std::string(length, 'x') + tail);
        ASSERT_EQ(list.size(), 2U) << length;
        EXPECT_EQ(list[0].text.size(), std::min<std::size_t>(length, 254) + 1) << length;
        EXPECT_EQ(list[1].text, "after\n") << length;
    }
    // A line of times whose end is cut off.
    EXPECT_TRUE(cue_with_times("0:0:1,0 --> " + std::string(250, ' ') + "0:0:2,0").empty());
}

TEST(SubtitleParser, TenMegabytesOnOneLine) {
    const std::string line(10000000, '1');
    EXPECT_TRUE(parse_subtitles(line).empty());
    const auto list = parse_subtitles("1\n0:0:1,0 --> 0:0:2,0\n" + line);
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].text.size(), 255U);
}

TEST(SubtitleParser, ZeroBytesEndLines) {
    using namespace std::string_literals;
    const std::string file = "1\0x\n0:0:1,0 --> 0:0:2,0\0junk\nab\0cd\n\0ef\n\n"s;
    const auto list = parse_subtitles(file);
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].text, "ab\n") << "a line that begins with one is empty";
}

// Damage of every kind to a good file: nothing may be read outside of it or take for ever.
TEST(SubtitleParser, DamagedFiles) {
    std::string good;
    for (int i = 0; i < 20; ++i) {
        good += std::to_string(i) + "\n00:00:0" + std::to_string(i % 10) +
                ",000 --> 00:00:10,000\n<i>line</i>\nnext\n\n";
    }
    std::mt19937 random(7);
    std::size_t cues = 0;
    for (int round = 0; round < 2000; ++round) {
        std::string bad = good.substr(0, random() % (good.size() + 1));
        for (auto i = random() % 20; i > 0 && !bad.empty(); --i)
            bad[random() % bad.size()] = static_cast<char>(random());
        cues += parse_subtitles(bad).size();
    }
    EXPECT_GT(cues, 2000U) << "some of it is still good";
}

TEST(SubtitleParser, RandomBytesHoldNoCue) {
    std::mt19937 random(11);
    std::string noise(1000000, '\0');
    for (char& byte : noise)
        byte = static_cast<char>(random());
    EXPECT_TRUE(parse_subtitles(noise).empty());
}

}  // namespace
