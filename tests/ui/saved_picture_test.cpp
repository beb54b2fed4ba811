// SPDX-License-Identifier: MIT
// The picture on its way into a file: from the window's dialog, and from the console.
#include <cmath>

#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>

#include "forms/picture_output.h"
#include "support/fake_host.h"
#include "ui_fixture.h"

namespace qk::test {
namespace {

// Four graphs with markers, limits and traces, while nothing is measured.
void Furnish(Program& program) {
  Session& session = program.session();
  session.Display.DisplaySet = DisplaySet::All;
  session.Display.MarkersOn = session.Display.ShowLimits = true;
  session.Markers.Set(0) = {true, false, true, 20};
  session.Markers.Set(1) = {true, true, false, 60};
  session.Channel(2).LimitsOn = true;
  session.Channel(2).UpperLimit.fill(20);
  session.Channel(4).GraphType = GraphType::Smith;
  program.graphs().RedrawAll(false);
  for (int n = 1; n <= 4; ++n)
    for (int i = 1; i <= session.Plan.NumPoints; ++i)
      program.graphs().PlotPoint(n, i, (n == 4 ? 1 : 30) * std::sin(i / 9.0 + n),
                                 std::cos(i / 9.0));
  program.graphs().LiveChanged();
}

QByteArray BytesOf(const std::string& path) {
  QFile file(QString::fromStdString(path));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

struct SavedPicture : testing::Test, UiFixture {
  SavedPicture() {
    AnswerAll();
    StartUp();
    Furnish(program);
  }
  // "Save Graphics" with the dialog answered: a filter chosen by its beginning, a name typed.
  void Save(const QString& filter, const std::string& path) {
    WhenUp<QFileDialog>(answers, [&](QFileDialog& box) {
      for (const QString& name : box.nameFilters())
        if (name.startsWith(filter)) {
          box.selectNameFilter(name);
          emit box.filterSelected(name);
        }
      box.findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(path));
      QMetaObject::invokeMethod(&box, "accept");
    });
    host.Act([this] { SaveGraphics(program.controller()); });
  }
};

TEST_F(SavedPicture, FromTheWindowIsThatOfTheConsolePixelByPixelAtTheSameSize) {
  const std::string fromWindow = scratch.File("window.bmp");
  Save("Bitmat", fromWindow);
  const Extent size = picture.Size();

  FakeClock clock;
  FakeHost surroundings(clock);
  QtPicture picture2({1000, 700});
  sim::SimulatedPort noPort{instrument, sim::RealClock(), sim::Pace::Unpaced};
  Program console{surroundings.registry(), surroundings.host(), noPort, picture2,
                  ProgramOptions{folder, 1}};
  console.session().Plan = program.session().Plan;
  Furnish(console);
  picture2.Resize(size);
  console.PictureResized();
  const std::string fromConsole = scratch.File("console.bmp");
  ASSERT_TRUE(picture2.Save(fromConsole));
  ASSERT_FALSE(BytesOf(fromWindow).isEmpty());
  EXPECT_EQ(BytesOf(fromWindow), BytesOf(fromConsole));
}

TEST_F(SavedPicture, ANameWithoutAnExtensionTakesThatOfTheFilter) {
  const std::pair<const char*, const char*> kinds[] = {
      {"Bitmat", "bmp"}, {"PNG", "png"}, {"GIF", "gif"}, {"TIF", "tif"}, {"JPEG", "jpg"}};
  for (const auto& [filter, extension] : kinds) {
    Save(filter, scratch.File("bare"));
    EXPECT_FALSE(BytesOf(scratch.File(std::string("bare.") + extension)).isEmpty()) << extension;
  }
  Save("Bitmat", scratch.File("named.png"));
  EXPECT_TRUE(BytesOf(scratch.File("named.png")).startsWith("\x89PNG"));
  EXPECT_FALSE(QFile::exists(QString::fromStdString(scratch.File("bare"))));
}

TEST_F(SavedPicture, AtTwiceThePixelsHoldsThemAllAndTheSameThings) {
  const Extent size = picture.Size();
  ASSERT_TRUE(picture.Save(scratch.File("once.png")));
  picture.Resize(size, 2);
  program.PictureResized();
  ASSERT_TRUE(picture.Save(scratch.File("twice.png")));
  const QImage once(QString::fromStdString(scratch.File("once.png")));
  const QImage twice(QString::fromStdString(scratch.File("twice.png")));
  ASSERT_EQ(twice.size(), once.size() * 2);
  // Seen from a little farther both are the same picture: the mean of each 8 by 8 pixels.
  const auto coarse = [&](const QImage& image) {
    return image.scaled(once.size() / 8, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_Grayscale8);
  };
  const QImage a = coarse(once), b = coarse(twice);
  double sum = 0;
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x)
      sum += std::abs(a.pixelColor(x, y).red() - b.pixelColor(x, y).red());
  EXPECT_LT(sum / (a.width() * a.height()), 6);
}

// ---- the label of saved pictures ---------------------------------------------------------------

TEST_F(SavedPicture, TheLabelWindowOffersTheLastFiveTextsAndShowsTheBeginningOfTheLabel) {
  host.Show("LabelGraphics");
  auto& list = Widget<QComboBox>("LabelGraphics", "LabList");
  EXPECT_EQ(list.count(), 5);
  TypeOver(*list.lineEdit(), "filter seven");
  for (const char* tick : {"Check1", "Check2"}) Click("LabelGraphics", tick);
  Click("LabelGraphics", "Command1");
  EXPECT_EQ(list.itemText(0), "filter seven");
  const auto& preview = Widget<QLineEdit>("LabelGraphics", "Text1");
  EXPECT_TRUE(preview.text().startsWith("filter seven  (")) << preview.text().toStdString();
  EXPECT_EQ(preview.cursorPosition(), 0);
}

}  // namespace
}  // namespace qk::test
