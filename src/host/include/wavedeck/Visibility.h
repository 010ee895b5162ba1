#pragma once

/// Marks what the stand-in host exports: library and programs meet in one registry, so its classes and their type
/// information must be the same objects on both sides.
#define WAVEDECK_API __attribute__((visibility("default")))
