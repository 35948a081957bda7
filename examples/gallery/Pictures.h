#pragma once

#include "examples/gallery/Drawing.h"

#include <vector>

struct Picture {
  /// Of its file.
  std::string name;
  std::string caption;
  std::string svg;
};

std::vector<Picture> picturesOfRectangles();
std::vector<Picture> picturesOfLines();
std::vector<Picture> picturesOfCurves();
