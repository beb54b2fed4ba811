// SPDX-License-Identifier: MIT
#include "ui/image_file.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include <QBuffer>
#include <QImageWriter>

#include "core/text.h"
#include "files/whole_file.h"

namespace qk {

namespace {

struct Format {
  std::string_view Extension;
  const char* Name;
};
constexpr std::array<Format, 11> kFormats{{{"bmp", "bmp"},
                                           {"dib", "bmp"},
                                           {"rle", "bmp"},
                                           {"png", "png"},
                                           {"gif", "gif"},
                                           {"tif", "tiff"},
                                           {"tiff", "tiff"},
                                           {"jpg", "jpeg"},
                                           {"jpeg", "jpeg"},
                                           {"jpe", "jpeg"},
                                           {"jfif", "jpeg"}}};
constexpr int kJpegQuality = 85;

// The text after the last point, unless that point is in a folder name.
std::string ExtensionOf(const std::string& path) {
  const std::size_t point = path.rfind('.');
  if (point == std::string::npos || path.find_first_of("/\\", point) != std::string::npos)
    return {};
  return AsciiLower(path.substr(point + 1));
}

const char* FormatOf(const std::string& path) {
  const std::string extension = ExtensionOf(path);
  for (const Format& format : kFormats)
    if (format.Extension == extension) return format.Name;
  return nullptr;
}

QByteArray Encoded(const QImage& image, const char* format) {
  if (std::string_view(format) == "gif") return GifOf(image);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  QImageWriter writer(&buffer, format);
  if (std::string_view(format) == "jpeg") writer.setQuality(kJpegQuality);
  return writer.write(image) ? bytes : QByteArray();
}

}  // namespace

Result<Done> WriteImageFile(const QImage& image, const std::string& path) {
  const char* format = FormatOf(path);
  if (format == nullptr) return Failure{"Unknown Image Format", path};
  const QByteArray bytes = Encoded(image, format);
  if (bytes.isEmpty()) return Failure{"Generic Error", path};
  return WriteWhole(path, {bytes.constData(), static_cast<std::size_t>(bytes.size())});
}

}  // namespace qk
