// Image files by their extension.
#pragma once

#include <string>

#include <QImage>

namespace qk {

// Writes the image as BMP, PNG, TIFF or JPEG (quality 85), as the path's extension says. Gives the
// reason when it cannot, else nothing.
std::string WriteImageFile(const QImage& image, const std::string& path);

}  // namespace qk
