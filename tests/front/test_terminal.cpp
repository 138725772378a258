// What a person at a terminal sees of a long drawing: progress, and histograms.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <string>
#include <vector>

#include "front/cli/histogram.h"
#include "front/cli/progress.h"

namespace {

using namespace qor::cli;

// Runs a line of the shell with standard error on a terminal of its own; returns what it shows.
std::string shown_on_terminal(const std::string& line) {
  const int master = posix_openpt(O_RDWR | O_NOCTTY);
  EXPECT_GE(master, 0);
  EXPECT_EQ(grantpt(master) | unlockpt(master), 0);
  const std::string name = ptsname(master);
  const int slave = open(name.c_str(), O_RDWR | O_NOCTTY);
  const pid_t child = fork();
  if (child == 0) {
    dup2(slave, STDERR_FILENO);
    close(master);
    execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
    _exit(127);
  }
  close(slave);
  std::string shown;
  char bytes[4096];
  for (ssize_t n; (n = read(master, bytes, sizeof bytes)) > 0;) {
    shown.append(bytes, static_cast<size_t>(n));
  }
  close(master);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  return shown;
}

TEST(Terminal, ProgressIsShownAndWipedAway) {
  EXPECT_EQ(progress_line(250, 1000, 3), " 25 %  250 of 1000 values, 9 s left");
  const std::string draw = QOR_COMMAND " random --generator mcg59 --seed 1 --distribution uniform";
  const std::string shown = shown_on_terminal(draw + " -n 20000000 -o /dev/null");
  EXPECT_NE(shown.find(" of 20000000 values, "), std::string::npos) << shown;
  EXPECT_NE(shown.find(" s left\r\033[K"), std::string::npos) << shown;
  EXPECT_TRUE(shown.ends_with("\r\033[K")) << shown;
  // Nothing of a short run.
  EXPECT_EQ(shown_on_terminal(draw + " -n 1000 -o /dev/null"), "");
}

template <class Number>
std::string histogram_of(Element element, const std::vector<std::vector<Number>>& blocks) {
  Histogram histogram({element, 1});
  for (const auto& block : blocks) histogram.add(block.data(), block.size());
  return histogram.text();
}

TEST(Histograms, BinsAreRoundAndWhatComesLaterIsCounted) {
  EXPECT_EQ(histogram_of<double>(Element::real64, {{0.0, 1.0, 4.5, 9.9}, {4.4, -1, 10, 11, 4.3}}),
            "9 values from -1 to 11, mean 4.9, standard deviation 4.51414\n\n"
            "  bin        values    share\n"
            "  below           1  11.11 %  #########################\n"
            "  0 to 0.5        1  11.11 %  #########################\n"
            "  0.5 to 1        0   0.00 %\n"
            "  1 to 1.5        1  11.11 %  #########################\n"
            "  1.5 to 2        0   0.00 %\n"
            "  2 to 2.5        0   0.00 %\n"
            "  2.5 to 3        0   0.00 %\n"
            "  3 to 3.5        0   0.00 %\n"
            "  3.5 to 4        0   0.00 %\n"
            "  4 to 4.5        2  22.22 %  ##################################################\n"
            "  4.5 to 5        1  11.11 %  #########################\n"
            "  5 to 5.5        0   0.00 %\n"
            "  5.5 to 6        0   0.00 %\n"
            "  6 to 6.5        0   0.00 %\n"
            "  6.5 to 7        0   0.00 %\n"
            "  7 to 7.5        0   0.00 %\n"
            "  7.5 to 8        0   0.00 %\n"
            "  8 to 8.5        0   0.00 %\n"
            "  8.5 to 9        0   0.00 %\n"
            "  9 to 9.5        0   0.00 %\n"
            "  9.5 to 10       1  11.11 %  #########################\n"
            "  above           2  22.22 %  ##################################################\n");
}

TEST(Histograms, WholeNumbers) {
  EXPECT_EQ(histogram_of<int32_t>(Element::int32, {{3, 4, 4}, {4}}),
            "4 values from 3 to 4, mean 3.75, standard deviation 0.5\n\n"
            "  bin  values    share\n"
            "  3         1  25.00 %  #################\n"
            "  4         3  75.00 %  ##################################################\n");
  const std::string wide = histogram_of<uint32_t>(Element::uint32, {{0, 4294967295}});
  EXPECT_NE(wide.find("\n  0 to 499999999 "), std::string::npos) << wide;
  EXPECT_NE(wide.find("\n  4000000000 to 4499999999 "), std::string::npos) << wide;
}

TEST(Histograms, OneValueAndNone) {
  for (const double value : {0.0, 1.0, -1e-300, 1e300, 5e-324}) {
    const std::string text = histogram_of<double>(Element::real64, {{value, value}});
    EXPECT_EQ(text.find("2 values from "), 0u);
    EXPECT_NE(text.find("100.00 %  ####"), std::string::npos) << text;
  }
  EXPECT_EQ(histogram_of<double>(Element::real64, {{}}), "no values\n");
}

}  // namespace
