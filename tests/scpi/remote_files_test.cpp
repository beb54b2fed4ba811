// SPDX-License-Identifier: MIT
// Files of remote clients.
#include "scpi/remote.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "scpi/remote_fixture.h"

namespace qk::test {
namespace {

// ---- files
// ---------------------------------------------------------------------------------------------

TEST_F(RemoteTest, FilesAreInTheirOwnFolderAlone) {
  Calibrate();
  Ask("INIT;*OPC?");
  Write("MMEM:STOR:SNP 'a.s2p';STAT 'b.cal'");
  EXPECT_EQ(Errors(), kNone);
  EXPECT_TRUE(std::filesystem::exists(folder.Text() + "/remote/a.s2p"));
  const std::string block = Ask("MMEM:TRAN? 'a.s2p'");
  EXPECT_EQ(block.substr(0, 1), "#");
  EXPECT_NE(block.find("# MHZ S MA R 50"), std::string::npos);
  const std::string catalog = Ask("MMEM:CAT?");
  EXPECT_NE(catalog.find("\"a.s2p,,"), std::string::npos);
  EXPECT_LT(catalog.find("a.s2p"), catalog.find("b.cal"));
  Write("MMEM:LOAD:STAT 'b.cal'");
  EXPECT_EQ(Errors(), kNone);
  Write("MMEM:DEL 'a.s2p'");
  EXPECT_FALSE(std::filesystem::exists(folder.Text() + "/remote/a.s2p"));
}

TEST_F(RemoteTest, ANetworkIsStoredInEitherVersionOfTouchstone) {
  Calibrate();
  Ask("INIT;*OPC?");
  const auto text = [this](const std::string& name) { return Ask("MMEM:TRAN? '" + name + "'"); };
  Write("MMEM:STOR:SNP 'one.s2p';SNP 'first.ts',V1;SNP 'two.TS';SNP 'second.s2p',v2");
  EXPECT_EQ(Errors(), kNone);
  for (const char* name : {"one.s2p", "first.ts"}) {
    EXPECT_NE(text(name).find("# MHZ S MA R 50"), std::string::npos) << name;
    EXPECT_EQ(text(name).find("[Version]"), std::string::npos) << name;
  }
  for (const char* name : {"two.TS", "second.s2p"}) {
    EXPECT_NE(text(name).find("[Version] 2.0\r\n# HZ S RI R 50"), std::string::npos) << name;
    EXPECT_NE(text(name).find("! Program: qk47-vna"), std::string::npos) << name;
  }
  Write("MMEM:STOR:SNP 'none.s2p',V3");
  EXPECT_EQ(Errors(), "-224,\"Illegal parameter value;V3\"");
  EXPECT_FALSE(std::filesystem::exists(folder.Text() + "/remote/none.s2p"));
}

constexpr const char* kNotFour =
    "-221,\"Settings conflict;not all four parameters are measured: use a name that ends with "
    ".s1p, "
    "or STOR:CSV\"";

// Readers take an .s1p for a frequency and two numbers a point, whatever is in its lines.
TEST_F(RemoteTest, AFileOfOnePortHoldsS11Alone) {
  const auto rows = [this](const std::string& name) {
    std::istringstream text(Ask("MMEM:TRAN? '" + name + "'"));
    std::vector<std::vector<double>> found;
    for (std::string line; std::getline(text, line);) {
      if (line.empty() || line.find_first_not_of("0123456789.-+eE \r") != std::string::npos)
        continue;
      std::istringstream fields(line);
      found.emplace_back(std::istream_iterator<double>(fields), std::istream_iterator<double>());
    }
    return found;
  };
  const auto expectS11 = [&](const std::string& name, bool polar) {
    const std::vector<std::vector<double>> found = rows(name);
    ASSERT_EQ(found.size(), 51u) << name;
    for (std::size_t i = 0; i < found.size(); ++i) {
      ASSERT_EQ(found[i].size(), 3u) << name;
      const Complex z = session.Data.S11[static_cast<int>(i)];
      EXPECT_NEAR(found[i][1], polar ? std::hypot(z.re, z.im) : z.re, 1e-4) << name;
    }
  };
  Write("SENS:FREQ:STAR 100 MHZ;STOP 3 GHZ;:SENS:SWE:POIN 51;:SENS:CORR:COLL:METH BOTH");
  Collect("port1 open", "OPEN,1");
  Collect("port1 short", "SHOR,1");
  Collect("port1 load", "LOAD,1");
  Collect("through", "THRU");
  Write("SENS:CORR:COLL ISOL");
  Settle();
  Write("SENS:CORR:COLL:SAVE");
  Settle();
  Bench("filter");
  Ask("INIT;*OPC?");
  ASSERT_TRUE(session.Cal.CalS11S21);
  Write("MMEM:STOR:SNP 'n.s1p';SNP 'N.S1P',V1;SNP 'two.s1p',V2");
  EXPECT_EQ(Errors(), kNone);
  for (const char* name : {"MMEM:STOR:SNP 'no.s2p'", "MMEM:STOR:SNP 'no.S2P',V1",
                           "MMEM:STOR:SNP 'no.txt'", "MMEM:STOR:SNP 'no.ts'"}) {
    Write(name);
    EXPECT_EQ(Errors(), kNotFour) << name;
  }
  expectS11("n.s1p", true);
  expectS11("N.S1P", true);
  expectS11("two.s1p", false);
  Calibrate();
  Bench("filter");
  Ask("INIT;*OPC?");
  Write("MMEM:STOR:SNP 'full.s1p'");
  EXPECT_EQ(Errors(), kNone);
  expectS11("full.s1p", true);
}

TEST_F(RemoteTest, ATableIsStoredWithTheColumnsThatAreNamed) {
  Calibrate();
  Ask("INIT;*OPC?");
  const auto head = [this](const std::string& name) {
    const std::string text = Ask("MMEM:TRAN? '" + name + "'");
    const std::size_t at = text.find("freq_Hz");
    return at == std::string::npos ? text : text.substr(at, text.find('\r', at) - at);
  };
  Write("MMEM:STOR:CSV 'plain.csv';CSV 'some.csv',DB,unwrapped,SWR;CSV 'z.csv',R,X");
  EXPECT_EQ(Errors(), kNone);
  EXPECT_EQ(head("plain.csv"), "freq_Hz,S11_re,S11_im,S21_re,S21_im,S12_re,S12_im,S22_re,S22_im");
  EXPECT_EQ(head("some.csv"),
            "freq_Hz,S11_dB,S11_unwrapped_deg,S11_SWR,S21_dB,S21_unwrapped_deg,S12_dB,"
            "S12_unwrapped_deg,S22_dB,S22_unwrapped_deg,S22_SWR");
  EXPECT_EQ(head("z.csv"), "freq_Hz,S11_R_ohm,S11_X_ohm,S22_R_ohm,S22_X_ohm");
  // Its numbers are those of the sweep.
  const std::string table = Ask("MMEM:TRAN? 'plain.csv'");
  const std::size_t first = table.find("\r\n100000000,") + 2;
  const std::vector<double> row = Numbers(table.substr(first, table.find('\r', first) - first));
  ASSERT_EQ(row.size(), 9u);
  EXPECT_EQ(row[1], session.Data.S11[0].re);
  EXPECT_EQ(row[8], session.Data.S22[0].im);
  for (const auto& [command, error] : std::vector<std::pair<std::string, std::string>>{
           {"MMEM:STOR:CSV 'no.csv',VOLTS", "-224,\"Illegal parameter value;VOLTS\""},
           {"MMEM:STOR:CSV 'no.csv',5", "-104,\"Data type error\""},
           {"MMEM:STOR:CSV '../no.csv'", "-257,\"File name error;../no.csv\""},
           {"MMEM:STOR:CSV", "-109,\"Missing parameter;MMEM:STOR:CSV\""}}) {
    Write(command);
    EXPECT_EQ(Errors(), error) << command;
  }
  EXPECT_FALSE(std::filesystem::exists(folder.Text() + "/remote/no.csv"));
}

TEST_F(RemoteTest, WhatIsNotMeasuredIsNoTable) {
  Write("SENS:FREQ:STAR 100 MHZ;STOP 3 GHZ;:SENS:SWE:POIN 51;:SENS:CORR:COLL:METH S21");
  Collect("through", "THRU");
  Write("SENS:CORR:COLL:SAVE");
  Settle();
  Ask("INIT;*OPC?");
  EXPECT_EQ(Errors(), kNone);
  Write("MMEM:STOR:CSV 'r.csv',R");
  EXPECT_EQ(Errors(), "-221,\"Settings conflict;no reflection is measured\"");
  Write("MMEM:STOR:SNP 'v.ts'");
  EXPECT_EQ(Errors().substr(0, 24), "-221,\"Settings conflict;");
  Write("MMEM:STOR:SNP 'none.s1p'");
  EXPECT_EQ(Errors(), "-221,\"Settings conflict;S11 is not measured\"");
  EXPECT_FALSE(std::filesystem::exists(folder.Text() + "/remote/none.s1p"));
  // Readers expect nine numbers in a line of an .s2p.
  Write("MMEM:STOR:SNP 'two.s2p'");
  EXPECT_EQ(Errors(), kNotFour);
  EXPECT_FALSE(std::filesystem::exists(folder.Text() + "/remote/two.s2p"));
  Write("MMEM:STOR:CSV 's21.csv'");
  EXPECT_EQ(Errors(), kNone);
  EXPECT_NE(Ask("MMEM:TRAN? 's21.csv'").find("freq_Hz,S21_re,S21_im\r"), std::string::npos);
}

TEST_F(RemoteTest, TheRootOfSensingAndSourceMayBeLeftOut) {
  Write("FREQ:STAR 100 MHZ;STOP 3 GHZ;:SWE:POIN 51;:POW -3;:AVER:COUN 2");
  EXPECT_EQ(Errors(), kNone);
  EXPECT_EQ(Ask("SENS:FREQ:STAR?;STOP?;:SENS1:SWE:POIN?;:SOUR:POW?;:SENS:AVER:COUN?"),
            "100000000;3000000000;51;-3;2");
  EXPECT_EQ(Ask("INST?"), "\"NA\"");
  Write("INST 'SA'");
  EXPECT_EQ(Errors(), "-224,\"Illegal parameter value;SA\"");
  Write("CALC:PAR:DEF:EXT 'mine',S21");
  EXPECT_EQ(Ask("SYST:MEAS2:NAME?"), "\"mine\"");
  EXPECT_EQ(Ask("SYST:MEAS3:NAME?"), "\"\"");
  EXPECT_EQ(Errors(), "-114,\"Header suffix out of range;no such measurement\"");
  Write("CALC:PAR2:SEL;:CALC:FORM PHAS");
  EXPECT_EQ(Ask("CALC:FORM?;:CALC:TRAC2:FORM?;:CALC:TRAC1:FORM?"), "PHAS;PHAS;MLOG");
  EXPECT_EQ(Errors(), kNone);
}

TEST_F(RemoteTest, OtherPlacesAreOutOfReach) {
  Calibrate();
  Ask("INIT;*OPC?");
  namespace fs = std::filesystem;
  Write("MMEM:STOR:STAT 'first.cal'");
  std::ofstream(folder.Text() + "/secret.txt") << "secret";
  fs::create_symlink(folder.Text() + "/secret.txt", folder.Text() + "/remote/link.txt");
  fs::create_directory(folder.Text() + "/remote/inner");
  for (const std::string name : {"../x", "/etc/passwd", "a/b", ".hidden", "", "..", "link.txt",
                                 "inner", "a b", "\xc3\xa4.txt"}) {
    const std::string quoted = "'" + name + "'";
    EXPECT_EQ(Ask("MMEM:TRAN? " + quoted), "#10") << name;
    for (const char* command : {"MMEM:STOR:STAT ", "MMEM:STOR:SNP ", "MMEM:STOR:CSV ",
                                "MMEM:STOR:IMAG ", "MMEM:DEL ", "MMEM:LOAD:STAT "})
      Write(command + quoted);
    Settle();
    const std::string errors = Errors();
    std::size_t count = 0;
    for (std::size_t at = errors.find("-257,"); at != std::string::npos;
         at = errors.find("-257,", at + 1))
      ++count;
    EXPECT_EQ(count, 7u) << name << errors;
  }
  std::ifstream secret(folder.Text() + "/secret.txt");
  std::string text;
  secret >> text;
  EXPECT_EQ(text, "secret");
}

TEST_F(RemoteTest, AFolderThatIsALinkIsNotRead) {
  namespace fs = std::filesystem;
  fs::create_directory(folder.Text() + "/elsewhere");
  std::ofstream(folder.Text() + "/elsewhere/private.txt") << "x";
  fs::create_directory_symlink(folder.Text() + "/elsewhere", folder.Text() + "/remote");
  EXPECT_EQ(Ask("MMEM:CAT?"), "\"\"");
  EXPECT_EQ(Errors(), "-257,\"File name error;the folder is a link\"");
  EXPECT_EQ(Ask("MMEM:TRAN? 'private.txt'"), "#10");
  EXPECT_EQ(Errors(), "-257,\"File name error;private.txt\"");
}

TEST_F(RemoteTest, AnUnknownEndingOfAPictureIsAFaultOfItsName) {
  surface.Unavailable = Failure{"Unknown Image Format", "x"};
  Write("MMEM:STOR:IMAG 'graph.xyz'");
  EXPECT_EQ(Errors(), "-257,\"File name error;graph.xyz: Unknown Image Format\"");
  surface.Unavailable = Failure{"No space left on device", "x"};
  Write("MMEM:STOR:IMAG 'graph.png'");
  EXPECT_EQ(Errors(), "-250,\"Mass storage error;No space left on device\"");
}

}  // namespace
}  // namespace qk::test
