// SPDX-License-Identifier: MIT
#include "support/recording_canvas.h"

#include <fstream>

#include <utility>

namespace qk::test {

void RecordingCanvas::Add(Drawn::Kind what, std::vector<CanvasPoint> points,
                          const std::string& log) {
  Drawn item;
  item.What = what;
  item.Points = std::move(points);
  item.Colour = colour_;
  item.Style = style_;
  item.Width = width_;
  item.FontSize = fontSize_;
  Items.push_back(std::move(item));
  Log.push_back(log);
}

void RecordingCanvas::SetPen(std::uint32_t colour, PenStyle style, int width) {
  colour_ = colour;
  style_ = style;
  width_ = width;
}

Extent RecordingCanvas::TextExtent(std::string_view text) const {
  ++TextsMeasured;
  return {static_cast<int>(text.size()) * 6 * fontSize_ / 10, fontSize_};
}

void RecordingCanvas::DrawLine(CanvasPoint a, CanvasPoint b) {
  Add(Drawn::Kind::Line, {a, b}, "line");
}

void RecordingCanvas::DrawRectangle(CanvasPoint topLeft, CanvasPoint bottomRight) {
  Add(Drawn::Kind::Rectangle, {topLeft, bottomRight}, "rectangle");
}

void RecordingCanvas::FillRectangle(CanvasPoint topLeft, CanvasPoint bottomRight,
                                    std::uint32_t colour) {
  if (topLeft.x <= 0 && topLeft.y <= 0 && bottomRight.x >= size_.width &&
      bottomRight.y >= size_.height) {
    Items.clear();
    Covered = true;
  }
  Add(Drawn::Kind::Fill, {topLeft, bottomRight}, "fill");
  Items.back().Colour = colour;
}

void RecordingCanvas::DrawEllipse(CanvasPoint topLeft, CanvasPoint bottomRight) {
  Add(Drawn::Kind::Ellipse, {topLeft, bottomRight}, "ellipse");
}

void RecordingCanvas::DrawArc(CanvasPoint topLeft, CanvasPoint bottomRight, double startDeg,
                              double spanDeg) {
  Add(Drawn::Kind::Arc, {topLeft, bottomRight}, "arc");
  Items.back().StartDeg = startDeg;
  Items.back().SpanDeg = spanDeg;
}

void RecordingCanvas::DrawPolyline(std::span<const CanvasPoint> points) {
  Add(Drawn::Kind::Polyline, {points.begin(), points.end()},
      "polyline " + std::to_string(points.size()));
}

void RecordingCanvas::FillPolygon(std::span<const CanvasPoint> points, std::uint32_t colour,
                                  double opacity) {
  Add(Drawn::Kind::Polygon, {points.begin(), points.end()},
      "polygon " + std::to_string(points.size()));
  Items.back().Colour = colour;
  Items.back().Opacity = opacity;
}

void RecordingCanvas::DrawText(CanvasPoint topLeft, std::string_view text, std::uint32_t colour) {
  Add(Drawn::Kind::Text, {topLeft}, "text " + std::string(text));
  Items.back().Text = text;
  Items.back().Colour = colour;
}

void RecordingSurface::Commit() {
  if (canvas_.Covered) background_.clear();
  background_.insert(background_.end(), canvas_.Items.begin(), canvas_.Items.end());
  canvas_.Items.clear();
  canvas_.Covered = false;
  canvas_.Log.push_back("commit");
}

void RecordingSurface::Wipe() {
  canvas_.Items.clear();
  canvas_.Covered = false;
  canvas_.Log.push_back("wipe");
}

void RecordingSurface::LiveChanged() {
  if (PutsOff)
    waits_ = true;
  else
    PictureSurface::LiveChanged();
}

void RecordingSurface::CatchUp() {
  if (std::exchange(waits_, false) && DrawLive) DrawLive();
}

void RecordingSurface::Present() {
  ++Presented;
  waits_ = false;
  canvas_.Log.push_back("present");
}

Result<Done> RecordingSurface::Save(const std::string& path) {
  if (Unavailable) return *Unavailable;
  SavedFiles.push_back(path);
  SavedPictures.push_back(background_);
  SavedPictures.back().insert(SavedPictures.back().end(), canvas_.Items.begin(),
                              canvas_.Items.end());
  return Done{};
}

Result<Done> RecordingSurface::SaveDrawing(const std::string& path, Extent size,
                                           const std::function<void(Canvas&)>& draw) {
  if (Unavailable) return *Unavailable;
  RecordingCanvas canvas(size);
  draw(canvas);
  SavedFiles.push_back(path);
  SavedPictures.push_back(canvas.Items);
  return Done{};
}

Result<Done> RecordingSurface::WriteReport(const ReportDocument& report, const std::string& path) {
  if (Unavailable) return *Unavailable;
  WrittenReport written{path, report, {}};
  for (const ReportBlock& block : report.Blocks)
    if (const auto* picture = std::get_if<ReportPicture>(&block)) {
      RecordingCanvas canvas(picture->Size);
      picture->Draw(canvas);
      written.Picture = canvas.Items;
    }
  Reports.push_back(std::move(written));
  std::ofstream(path) << "report\n";
  return Done{};
}

Result<Done> RecordingSurface::Print(const PageJob& job) {
  if (Unavailable) return *Unavailable;
  PrintedPage page{job.Printer, job.Title, job.Window, job.Size, job.Place(Page, job.Size), {}};
  if (page.Place) {
    RecordingCanvas paper(job.Size);
    job.Draw(paper);
    page.Items = paper.Items;
  }
  Pages.push_back(page);
  return Done{};
}

std::vector<Drawn> OfKind(const std::vector<Drawn>& items, Drawn::Kind what) {
  std::vector<Drawn> found;
  for (const Drawn& item : items)
    if (item.What == what) found.push_back(item);
  return found;
}

std::vector<std::string> TextsOf(const std::vector<Drawn>& items) {
  std::vector<std::string> texts;
  for (const Drawn& item : OfKind(items, Drawn::Kind::Text)) texts.push_back(item.Text);
  return texts;
}

const Drawn* FindText(const std::vector<Drawn>& items, std::string_view text) {
  for (const Drawn& item : items)
    if (item.What == Drawn::Kind::Text && item.Text == text) return &item;
  return nullptr;
}

}  // namespace qk::test
