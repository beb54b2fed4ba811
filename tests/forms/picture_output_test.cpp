// SPDX-License-Identifier: MIT
#include "forms/picture_output.h"

#include <gtest/gtest.h>

#include "support/program_fixture.h"

namespace qk {
namespace {

using test::Drawn;
using test::FindText;
using test::Texts;

struct PictureOutput : testing::Test, test::ScriptedProgram {
  void Print() { PrintGraphics(program.controller()); }
  void Save() { SaveGraphics(program.controller()); }
  void AnswerDialog(const char* answer) { fake.Choices.push_back(answer); }
  // The background's fill on a page.
  std::uint32_t PaperColour() { return surface.Pages.at(0).Items.at(0).Colour; }

  PictureOutput() { program.graphs().RedrawAll(true); }
};

TEST_F(PictureOutput, AsksForThePrinterAndPrintsOnePage) {
  AnswerDialog("Laser");
  Print();
  ASSERT_EQ(fake.Dialogs.size(), 1u);
  EXPECT_EQ(fake.Dialogs[0].Kind, DialogKind::Print);
  EXPECT_EQ(fake.Dialogs[0].Title, "Print Graphics");
  ASSERT_EQ(surface.Pages.size(), 1u);
  EXPECT_EQ(surface.Pages[0].Printer, "Laser");
  EXPECT_EQ(surface.Pages[0].Size.width, 1000);
  EXPECT_EQ(surface.Pages[0].Place->top, 600);
  EXPECT_EQ(surface.Pages[0].Place->right, 8550);  // nine times, less 5 percent
  EXPECT_NE(FindText(surface.Pages[0].Items, "S11 LogMag"), nullptr);
  EXPECT_TRUE(TakeMessages().empty());
}

TEST_F(PictureOutput, ACancelledDialogPrintsNothingAndSaysNothing) {
  fake.Choices.push_back(std::nullopt);
  Print();
  EXPECT_TRUE(surface.Pages.empty());
  EXPECT_TRUE(TakeMessages().empty());
}

TEST_F(PictureOutput, APrinterThatDoesNotPrintIsReported) {
  AnswerDialog("Laser");
  surface.Unavailable = Failure{"out of paper", "Laser"};
  Print();
  EXPECT_EQ(TakeMessages(), Texts{"Print Graphics|Error 482 selecting printer.\nLaser: out of "
                                  "paper|exclamation|ok"});
}

TEST_F(PictureOutput, PrintsInTheDefaultColoursIfSoChosenAndGivesTheUsersBack) {
  session.Colour.BackColour = 0x102030;
  session.Colour.LimitColour = 0x405060;
  AnswerDialog("Laser");
  Print();
  EXPECT_EQ(PaperColour(), 0x102030u);
  surface.Pages.clear();
  session.Print.PrintDefaultColours = true;
  AnswerDialog("Laser");
  Print();
  EXPECT_EQ(PaperColour(), 0xFFFFFFu);
  EXPECT_EQ(session.Colour.BackColour, 0x102030u);
  EXPECT_EQ(session.Colour.LimitColour, 0x405060u);
  EXPECT_EQ(surface.Background().at(0).Colour, 0x102030u);
}

TEST_F(PictureOutput, ACancelledDialogGivesTheUsersColoursBackToo) {
  session.Colour.BackColour = 0x102030;
  session.Print.PrintDefaultColours = true;
  fake.Choices.push_back(std::nullopt);
  Print();
  EXPECT_EQ(session.Colour.BackColour, 0x102030u);
  EXPECT_EQ(surface.Background().at(0).Colour, 0x102030u);
}

TEST_F(PictureOutput, TheLabelStandsOnPaperWhenItIsToBeShown) {
  session.Label.Composed = "Filter 7";
  AnswerDialog("Laser");
  Print();
  EXPECT_EQ(FindText(surface.Pages[0].Items, "Filter 7"), nullptr);
  session.Label.Show = true;
  AnswerDialog("Laser");
  Print();
  EXPECT_NE(FindText(surface.Pages[1].Items, "Filter 7"), nullptr);
  EXPECT_EQ(FindText(surface.Background(), "Filter 7"), nullptr);
  EXPECT_EQ(FindText(surface.Overlay(), "Filter 7"), nullptr);
}

TEST_F(PictureOutput, AFixedMarkerIsPrintedAsItStands) {
  session.Display.MarkersOn = true;
  session.Markers.Set(0) = {true, true, false, 0};
  program.graphs().RedrawAll(true);
  ToggleFixed(session.Markers);
  const double value = session.Markers.Of(0, 0).Value = 1.25;
  AnswerDialog("Laser");
  Print();
  EXPECT_NE(FindText(surface.Pages[0].Items, "1.250 dB"), nullptr) << value;
}

TEST_F(PictureOutput, SavesInTheFolderOfTheProgramByFiveKinds) {
  AnswerDialog("/tmp/picture.png");
  Save();
  ASSERT_EQ(fake.Dialogs.size(), 1u);
  const Dialog& dialog = fake.Dialogs[0];
  EXPECT_EQ(dialog.Kind, DialogKind::Save);
  EXPECT_EQ(dialog.Folder, session.InstallFolder);
  EXPECT_EQ(dialog.FilterIndex, 1);
  EXPECT_EQ(dialog.Filter,
            "Bitmat (*.bmp)|*.bmp|PNG_files(*.png)|*.png|GIF_files(*.gif)|*.gif|"
            "TIF_files(*.tif)|*.tif|JPEG_files(*.jpg)|*.jpg|"
            "SVG_files(*.svg)|*.svg|PDF_files(*.pdf)|*.pdf|");
  EXPECT_EQ(surface.SavedFiles, Texts{"/tmp/picture.png"});
  EXPECT_TRUE(TakeMessages().empty());  // intentional: no message on success
}

TEST_F(PictureOutput, TheSavedPictureHoldsTheLabelAndTheScreenDoesNotAfterwards) {
  session.Label.Composed = "Filter 7";
  session.Label.Show = true;
  AnswerDialog("/tmp/picture.png");
  Save();
  EXPECT_NE(FindText(surface.SavedPictures.at(0), "Filter 7"), nullptr);
  EXPECT_NE(FindText(surface.SavedPictures.at(0), "S11 LogMag"), nullptr);
  EXPECT_EQ(FindText(surface.Overlay(), "Filter 7"), nullptr);
}

TEST_F(PictureOutput, ACancelledSaveIsQuiet) {
  fake.Choices.push_back(std::nullopt);
  Save();
  EXPECT_TRUE(surface.SavedFiles.empty());
  EXPECT_TRUE(TakeMessages().empty());
}

TEST_F(PictureOutput, WhatCannotBeSavedIsReportedWithItsCause) {
  AnswerDialog("/tmp/picture.xyz");
  surface.Unavailable = Failure{"Unknown Image Format", "/tmp/picture.xyz"};
  Save();
  EXPECT_EQ(TakeMessages(), Texts{"Save Graphics|Unknown Image Format|exclamation|ok"});
}

TEST_F(PictureOutput, AWindowIsPrintedFittedToThePage) {
  AnswerDialog("Laser");
  PrintWindow(program.host(), surface, {"P1dBForm", "P1dB Test", {400, 400}, [](Canvas& canvas) {
                                          canvas.DrawText({1, 2}, "gain", 0);
                                        }});
  ASSERT_EQ(surface.Pages.size(), 1u);
  EXPECT_EQ(surface.Pages[0].Window, "P1dBForm");
  EXPECT_EQ(surface.Pages[0].Place->left, 900);
  EXPECT_EQ(surface.Pages[0].Place->right, 8100);
  EXPECT_NE(FindText(surface.Pages[0].Items, "gain"), nullptr);
  surface.Unavailable = Failure{"out of paper", ""};
  AnswerDialog("Laser");
  PrintWindow(program.host(), surface, {"P1dBForm", "P1dB Test", {400, 400}, {}});
  EXPECT_EQ(TakeMessages(),
            Texts{"P1dB Test|Error 482 selecting printer.\nout of paper|exclamation|ok"});
}

}  // namespace
}  // namespace qk
