// SPDX-License-Identifier: MIT
#include "console/line_source.h"

#include <gtest/gtest.h>

#include <array>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace qk {
namespace {

struct Pipe {
  Pipe() { EXPECT_EQ(pipe(ends.data()), 0); }
  ~Pipe() {
    close(ends[0]);
    CloseInput();
  }
  void Write(std::string_view text) {
    EXPECT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  void CloseInput() {
    if (ends[1] >= 0) close(ends[1]);
    ends[1] = -1;
  }
  std::array<int, 2> ends{};
};

using Got = LineSource::Got;

TEST(DescriptorLines, ALineIsGivenWithoutItsEnd) {
  Pipe pipe;
  pipe.Write("one\ntwo\n");
  DescriptorLines lines(pipe.ends[0]);
  std::string line;
  EXPECT_EQ(lines.Next(0, line), Got::Line);
  EXPECT_EQ(line, "one");
  EXPECT_EQ(lines.Next(0, line), Got::Line);
  EXPECT_EQ(line, "two");
}

TEST(DescriptorLines, WithoutALineNothingIsGivenAtOnce) {
  Pipe pipe;
  DescriptorLines lines(pipe.ends[0]);
  std::string line;
  EXPECT_EQ(lines.Next(0, line), Got::Nothing);
}

TEST(DescriptorLines, ALineMayComeInPieces) {
  Pipe pipe;
  DescriptorLines lines(pipe.ends[0]);
  std::string line;
  pipe.Write("on");
  EXPECT_EQ(lines.Next(0, line), Got::Nothing);
  pipe.Write("e\nt");
  EXPECT_EQ(lines.Next(0, line), Got::Line);
  EXPECT_EQ(line, "one");
  EXPECT_EQ(lines.Next(0, line), Got::Nothing);
}

TEST(DescriptorLines, ALastLineWithoutALineEndIsALine) {
  Pipe pipe;
  pipe.Write("one\nlast");
  pipe.CloseInput();
  DescriptorLines lines(pipe.ends[0]);
  std::string line;
  EXPECT_EQ(lines.Next(0, line), Got::Line);
  EXPECT_EQ(lines.Next(-1, line), Got::Line);
  EXPECT_EQ(line, "last");
  EXPECT_EQ(lines.Next(-1, line), Got::End);
  EXPECT_EQ(lines.Next(0, line), Got::End);
}

TEST(DescriptorLines, EmptyLinesAreLines) {
  Pipe pipe;
  pipe.Write("\n\n");
  pipe.CloseInput();
  DescriptorLines lines(pipe.ends[0]);
  std::string line = "x";
  EXPECT_EQ(lines.Next(0, line), Got::Line);
  EXPECT_EQ(line, "");
  EXPECT_EQ(lines.Next(0, line), Got::Line);
  EXPECT_EQ(lines.Next(0, line), Got::End);
}

TEST(DescriptorLines, ALineLongerThanAReadComesWhole) {
  Pipe pipe;
  const std::string half(40000, 'a');
  DescriptorLines lines(pipe.ends[0]);
  std::string line;
  pipe.Write(half);
  EXPECT_EQ(lines.Next(0, line), Got::Nothing);
  pipe.Write(half + "\n");
  EXPECT_EQ(lines.Next(0, line), Got::Line);
  EXPECT_EQ(line, half + half);
}

TEST(DescriptorLines, ALineWithoutEndIsRefusedInsteadOfFillingTheMemory) {
  const int zeros = open("/dev/zero", O_RDONLY);
  DescriptorLines lines(zeros);
  std::string line;
  EXPECT_EQ(lines.Next(0, line), Got::End);
  EXPECT_EQ(lines.Broken(), "a line of more than 1048576 bytes");
  close(zeros);
}

TEST(DescriptorLines, TheEndIsKnownBeforeItIsRead) {
  Pipe pipe;
  DescriptorLines lines(pipe.ends[0]);
  EXPECT_FALSE(lines.AtEnd());
  pipe.Write("a\n");
  EXPECT_FALSE(lines.AtEnd());
  pipe.CloseInput();
  EXPECT_FALSE(lines.AtEnd()) << "a line waits";
  std::string line;
  EXPECT_EQ(lines.Next(0, line), Got::Line);
  EXPECT_TRUE(lines.AtEnd());
  EXPECT_EQ(lines.Broken(), "");
}

TEST(DescriptorLines, AWaitEndsWhenTheWakingDescriptorSpeaks) {
  Pipe pipe, wake;
  DescriptorLines lines(pipe.ends[0], wake.ends[0]);
  wake.Write("x");
  std::string line;
  EXPECT_EQ(lines.Next(-1, line), Got::Nothing);
}

TEST(DescriptorLines, ADirectoryInPlaceOfAScriptIsAnEnd) {
  const int folder = open("/", O_RDONLY);
  DescriptorLines lines(folder);
  std::string line;
  EXPECT_EQ(lines.Next(0, line), Got::End);
  close(folder);
}

}  // namespace
}  // namespace qk
