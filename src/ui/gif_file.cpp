// SPDX-License-Identifier: MIT
// Encodes an image as a GIF.
#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

#include <gif_lib.h>

#include "ui/image_file.h"

namespace qk {

namespace {

constexpr std::size_t kMostColours = 256;

struct Palette {
  std::vector<QRgb> Colours;
  std::unordered_map<QRgb, GifPixelType> IndexOf;  // for every colour of the image
};

int Distance(QRgb a, QRgb b) {
  const int r = qRed(a) - qRed(b), g = qGreen(a) - qGreen(b), blue = qBlue(a) - qBlue(b);
  return r * r + g * g + blue * blue;
}

GifPixelType Nearest(const std::vector<QRgb>& colours, QRgb rgb) {
  const auto nearest = std::min_element(colours.begin(), colours.end(), [rgb](QRgb a, QRgb b) {
    return Distance(a, rgb) < Distance(b, rgb);
  });
  return static_cast<GifPixelType>(nearest - colours.begin());
}

// Repeatedly adds the colour farthest from all chosen ones (Gonzalez, "Clustering to minimize the
// maximum intercluster distance", 1985): each blend of antialiased lines is rare, but no colour may
// be far from its original.
void AddFarthest(const std::vector<std::pair<int, QRgb>>& byCount, std::vector<QRgb>& chosen) {
  std::vector<int> away(byCount.size());
  for (std::size_t i = 0; i < byCount.size(); ++i) {
    const QRgb rgb = byCount[i].second;
    away[i] = Distance(rgb, chosen[Nearest(chosen, rgb)]);
  }
  while (chosen.size() < kMostColours) {
    const auto farthest = std::max_element(away.begin(), away.end());
    chosen.push_back(byCount[static_cast<std::size_t>(farthest - away.begin())].second);
    for (std::size_t i = 0; i < byCount.size(); ++i)
      away[i] = std::min(away[i], Distance(byCount[i].second, chosen.back()));
  }
}

// Ties are ordered by value, so that a picture always gives the same file.
Palette PaletteOf(const QImage& image) {
  std::unordered_map<QRgb, int> counts;
  for (int y = 0; y < image.height(); ++y) {
    const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    for (const QRgb rgb : std::span(line, static_cast<std::size_t>(image.width())))
      ++counts[rgb & 0xFFFFFF];
  }
  std::vector<std::pair<int, QRgb>> byCount;
  byCount.reserve(counts.size());
  for (const auto& [rgb, count] : counts) byCount.emplace_back(-count, rgb);
  std::sort(byCount.begin(), byCount.end());
  Palette palette;
  const std::size_t common = byCount.size() <= kMostColours ? byCount.size() : kMostColours / 4;
  for (std::size_t i = 0; i < common; ++i) palette.Colours.push_back(byCount[i].second);
  if (common < byCount.size()) AddFarthest(byCount, palette.Colours);
  for (const auto& [count, rgb] : byCount) palette.IndexOf[rgb] = Nearest(palette.Colours, rgb);
  return palette;
}

int Append(GifFileType* gif, const GifByteType* data, int count) {
  static_cast<QByteArray*>(gif->UserData)->append(reinterpret_cast<const char*>(data), count);
  return count;
}

struct CloseGif {
  void operator()(GifFileType* gif) const { EGifCloseFile(gif, nullptr); }
};

bool Write(GifFileType* gif, const QImage& image, const Palette& palette) {
  const auto freeMap = [](ColorMapObject* map) { GifFreeMapObject(map); };
  const std::unique_ptr<ColorMapObject, decltype(freeMap)> map(
      GifMakeMapObject(static_cast<int>(kMostColours), nullptr), freeMap);
  if (!map) return false;
  for (std::size_t i = 0; i < palette.Colours.size(); ++i) {
    const QRgb rgb = palette.Colours[i];
    map->Colors[i] = {static_cast<GifByteType>(qRed(rgb)), static_cast<GifByteType>(qGreen(rgb)),
                      static_cast<GifByteType>(qBlue(rgb))};
  }
  if (EGifPutScreenDesc(gif, image.width(), image.height(), 8, 0, map.get()) == GIF_ERROR ||
      EGifPutImageDesc(gif, 0, 0, image.width(), image.height(), false, nullptr) == GIF_ERROR)
    return false;
  std::vector<GifPixelType> row(static_cast<std::size_t>(image.width()));
  for (int y = 0; y < image.height(); ++y) {
    const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    std::transform(line, line + image.width(), row.begin(),
                   [&](QRgb rgb) { return palette.IndexOf.at(rgb & 0xFFFFFF); });
    if (EGifPutLine(gif, row.data(), image.width()) == GIF_ERROR) return false;
  }
  return true;
}

}  // namespace

QByteArray GifOf(const QImage& picture) {
  const QImage image = picture.convertToFormat(QImage::Format_RGB32);
  constexpr int kLargest = std::numeric_limits<std::uint16_t>::max();
  if (image.isNull() || image.width() > kLargest || image.height() > kLargest) return {};
  QByteArray bytes;
  int error = 0;
  std::unique_ptr<GifFileType, CloseGif> gif(EGifOpen(&bytes, Append, &error));
  if (!gif || !Write(gif.get(), image, PaletteOf(image))) return {};
  const bool closed = EGifCloseFile(gif.release(), &error) == GIF_OK;  // writes the end of the file
  return closed ? bytes : QByteArray();
}

}  // namespace qk
