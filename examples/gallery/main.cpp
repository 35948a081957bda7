#include "examples/gallery/Pictures.h"

#include <filesystem>
#include <fstream>
#include <iostream>

namespace {

void write(const std::filesystem::path& file, const std::string& text) {
  std::ofstream out(file);
  out << text;
  out.flush();
  if (!out) throw std::runtime_error("cannot write " + file.string());
}

}  // namespace

// Writes one SVG file for each picture, and a page that shows them all.
int main(int argumentCount, char** arguments) {
  if (argumentCount != 2) {
    std::cerr << "usage: gallery DIRECTORY\n";
    return 2;
  }
  try {
    const std::filesystem::path directory = arguments[1];
    std::filesystem::create_directories(directory);
    std::string page = R"(<!DOCTYPE html>
<html lang="en"><meta charset="utf-8"><title>Geometry</title>
<style>body { font-family: sans-serif; margin: 2em; max-width: 60em }
img { border: 1px solid #ddd; max-width: 100% }</style>
<h1>Geometry</h1>
)";
    std::size_t count = 0;
    for (const auto& pictures : {picturesOfLines(), picturesOfCurves(), picturesOfRectangles()}) {
      for (const Picture& picture : pictures) {
        write(directory / (picture.name + ".svg"), picture.svg);
        page += "<figure><img src='" + picture.name + ".svg' alt=''><figcaption>" +
                picture.caption + "</figcaption></figure>\n";
        ++count;
      }
    }
    write(directory / "index.html", page + "</html>\n");
    std::cout << count << " pictures: " << (directory / "index.html").string() << '\n';
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "gallery: " << error.what() << '\n';
    return 1;
  }
}
