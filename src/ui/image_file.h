// SPDX-License-Identifier: MIT
// Image files by their extension.
#pragma once

#include <string>

#include <QByteArray>
#include <QImage>

#include "core/result.h"

namespace qk {

// Writes the image as BMP (bmp, dib, rle), PNG, GIF, TIFF (tif, tiff) or JPEG (jpg, jpeg, jpe,
// jfif; quality 85), by the extension of the path in any case. Writes a temporary file in the same
// folder and renames it.
Result<Done> WriteImageFile(const QImage& image, const std::string& path);

// Encodes the image as a GIF: exact with up to 256 colours; otherwise the 256 most frequent colours
// are kept and every other colour becomes the nearest of them. Empty if it cannot be encoded.
QByteArray GifOf(const QImage& image);

}  // namespace qk
