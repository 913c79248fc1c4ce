// Pictures as PNG files.
#pragma once

#include <string>

#include "pictures/picture.h"

namespace kestrail {

/// Writes R, G and B alone: alpha is nothing that a window shows. The file takes its name when it
/// is whole. Returns what went wrong; empty if nothing did.
std::string WritePng(const SPicture& picture, const std::string& path);

/// Of any kind of PNG; leaves no picture otherwise. Returns what went wrong; empty if nothing did.
std::string ReadPng(const std::string& path, SPicture& picture);

}  // namespace kestrail
