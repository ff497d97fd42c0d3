// Fills and the blur on 24-bit pictures, one thread. Peers: OpenCV (a row or column of two pixels resized and repeated;
// filter2D), cairo (a linear gradient; 32 bits a pixel, it has no 24), Halide (the blur's inside in exact integers,
// from one buffer to another, without the edges). Floors: a row repeated or memset for the fills, into the same memory
// or as here into new memory; a copy of the picture for the blur. Fills are timed into memory that is there already
// and, as "new", with the allocation of the picture.
#include <Halide.h>
#include <benchmark/benchmark.h>
#include <cairo.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <random>
#include <string>

#include "bench/Values.h"
#include "kivtools/BmpRoutines.h"
#include "tools/BmpRoutines/Rasters.h"

namespace {

using kiv::Bitmap;
using kiv::Raster;

constexpr kiv::Colour kFrom = 0x00123456;
constexpr kiv::Colour kTo = 0x00FEDCBA;

struct Size {
  int width;
  int height;

  [[nodiscard]] std::string Name() const { return std::to_string(width) + "x" + std::to_string(height); }
  [[nodiscard]] std::size_t RowBytes() const { return 3 * static_cast<std::size_t>(width); }
  [[nodiscard]] std::size_t Bytes() const { return RowBytes() * static_cast<std::size_t>(height); }
};
constexpr Size kSizes[] = {{1920, 1080}, {4096, 4096}};

/// A picture of random pixels and room for another one, for all contenders of a size.
struct Pictures {
  explicit Pictures(Size its) : size(its), bitmap(its.width, its.height), other(its.width, its.height) {
    other.FillRect(0, 0, size.width, size.height, 0xFFFFFF);  // the system gives memory with its first use
    std::mt19937 random(72);
    for (std::size_t i = 0; i < size.Bytes(); ++i) {
      bitmap.ScanLine(0)[i] = static_cast<std::uint8_t>(random());  // both widths fill whole words: no gaps
    }
  }

  [[nodiscard]] cv::Mat Mat(Bitmap& of) const { return {size.height, size.width, CV_8UC3, of.ScanLine(0)}; }

  Size size;
  Bitmap bitmap;
  Bitmap other;
};

template <class Work>
void Register(const std::string& what, const std::string& who, Work work) {
  benchmark::RegisterBenchmark(("Graphics/" + what + "/" + who).c_str(), [work](benchmark::State& state) mutable {
    for (auto _ : state) {
      work();
      benchmark::ClobberMemory();
    }
  });
}

void OpenCvFill(cv::Mat& out, bool down) {
  cv::Mat two(down ? 2 : 1, down ? 1 : 2, CV_8UC3);
  two.at<cv::Vec3b>(0, 0) = cv::Vec3b(0x12, 0x34, 0x56);
  two.at<cv::Vec3b>(down ? 1 : 0, down ? 0 : 1) = cv::Vec3b(0xFE, 0xDC, 0xBA);
  cv::Mat line;
  cv::resize(two, line, down ? cv::Size(1, out.rows) : cv::Size(out.cols, 1), 0, 0, cv::INTER_LINEAR);
  cv::repeat(line, down ? 1 : out.rows, down ? out.cols : 1, out);
}

void CairoFill(cairo_surface_t* surface, double x, double y) {
  cairo_t* const cairo = cairo_create(surface);
  cairo_pattern_t* const pattern = cairo_pattern_create_linear(0, 0, x, y);
  cairo_pattern_add_color_stop_rgb(pattern, 0, 0x56 / 255.0, 0x34 / 255.0, 0x12 / 255.0);
  cairo_pattern_add_color_stop_rgb(pattern, 1, 0xBA / 255.0, 0xDC / 255.0, 0xFE / 255.0);
  cairo_set_source(cairo, pattern);
  cairo_paint(cairo);
  cairo_pattern_destroy(pattern);
  cairo_destroy(cairo);
}

/// Writes into memory that the allocator has just given, and gives it back.
template <class Write>
void IntoNewMemory(std::size_t bytes, Write write) {
  const std::unique_ptr<std::uint8_t, decltype(&std::free)> memory(static_cast<std::uint8_t*>(std::malloc(bytes)),
                                                                   &std::free);
  write(memory.get());
  benchmark::DoNotOptimize(memory.get());
  benchmark::ClobberMemory();
}

void RegisterFill(Pictures& pictures, bool down) {
  const Size size = pictures.size;
  const std::string what = down ? "vertical-" : "horizontal-";
  const auto fill = down ? &kiv::bmp::FillFromTop : &kiv::bmp::FillFromLeft;
  const auto generate = down ? &kiv::GenerateVertFountainFill : &kiv::GenerateHorizFountainFill;
  const auto repeated = [size, down](std::uint8_t* out, const std::uint8_t* row) {
    if (down) {
      std::memset(out, 0x55, size.Bytes());
      return;
    }
    for (int y = 0; y < size.height; ++y) {
      std::memcpy(out + static_cast<std::size_t>(y) * size.RowBytes(), row, size.RowBytes());
    }
  };
  bench::Require(generate(3, 3, kFrom, kTo).Pixel(down ? 0 : 1, down ? 1 : 0) == 0x606C77, "a third of the way");

  Register(what + size.Name(), "kiv", [&pictures, fill] { fill(kiv::RasterOf(pictures.other), kFrom, kTo); });
  Register(what + size.Name(), "floor",
           [&pictures, repeated] { repeated(pictures.other.ScanLine(0), pictures.bitmap.ScanLine(0)); });
  Register(what + size.Name(), "opencv", [&pictures, down] {
    cv::Mat out = pictures.Mat(pictures.other);
    OpenCvFill(out, down);
  });
  const std::shared_ptr<cairo_surface_t> surface(
      cairo_image_surface_create(CAIRO_FORMAT_RGB24, size.width, size.height), &cairo_surface_destroy);
  Register(what + size.Name(), "cairo",
           [surface, size, down] { CairoFill(surface.get(), down ? 0 : size.width, down ? size.height : 0); });

  Register(what + size.Name() + "-new", "kiv",
           [size, generate] { benchmark::DoNotOptimize(generate(size.width, size.height, kFrom, kTo)); });
  Register(what + size.Name() + "-new", "floor", [&pictures, size, repeated] {
    IntoNewMemory(size.Bytes(), [&](std::uint8_t* out) { repeated(out, pictures.bitmap.ScanLine(0)); });
  });
}

cv::Mat OpenCvKernel(int level) {
  cv::Mat kernel = level == 2 ? cv::Mat::zeros(3, 3, CV_32F) : cv::Mat::zeros(5, 5, CV_32F);
  const int reach = level - 1;
  for (int dy = -reach; dy <= reach; ++dy) {
    for (int dx = -reach; dx <= reach; ++dx) {
      if (std::abs(dx) + std::abs(dy) <= reach) {
        kernel.at<float>(dy + reach, dx + reach) = 1;
      }
    }
  }
  kernel.at<float>(reach, reach) = level == 2 ? 5 : 12;
  return kernel / (level == 2 ? 9 : 24);
}

/// The blur's inside over rows of bytes, which is all that Halide has to see of pixels.
class HalideBlur {
 public:
  HalideBlur(Size size, int level) : reach_(level - 1), out_(Out(size, reach_)) {
    Halide::Var x;
    Halide::Var y;
    const auto at = [&](int dx, int dy) { return Halide::cast<std::uint16_t>(in_(x + 3 * dx, y + dy)); };
    Halide::Expr sum = at(0, 0) * Halide::cast<std::uint16_t>(level == 2 ? 4 : 11);
    for (int dy = -reach_; dy <= reach_; ++dy) {
      for (int dx = -reach_; dx <= reach_; ++dx) {
        if (std::abs(dx) + std::abs(dy) <= reach_) {
          sum += at(dx, dy);
        }
      }
    }
    blur_(x, y) = Halide::cast<std::uint8_t>(sum / Halide::cast<std::uint16_t>(level == 2 ? 9 : 24));
    blur_.vectorize(x, 32);
    blur_.compile_jit();
  }

  void Run(Bitmap& bitmap) {
    in_.set(Halide::Buffer<std::uint8_t>(bitmap.ScanLine(0), 3 * bitmap.Width(), bitmap.Height()));
    blur_.realize(out_);
  }

  /// Whether its inside is what the library gives.
  [[nodiscard]] bool Agrees(const Bitmap& expected) const {
    for (int y = reach_; y < expected.Height() - reach_; ++y) {
      const std::size_t bytes = 3 * static_cast<std::size_t>(expected.Width() - 2 * reach_);
      if (std::memcmp(&out_(3 * reach_, y), expected.ScanLine(y) + std::ptrdiff_t{3} * reach_, bytes) != 0) {
        return false;
      }
    }
    return true;
  }

 private:
  static Halide::Buffer<std::uint8_t> Out(Size size, int reach) {
    Halide::Buffer<std::uint8_t> out(3 * (size.width - 2 * reach), size.height - 2 * reach);
    out.set_min(3 * reach, reach);
    return out;
  }

  int reach_;
  Halide::ImageParam in_{Halide::type_of<std::uint8_t>(), 2};
  Halide::Func blur_;
  Halide::Buffer<std::uint8_t> out_;
};

void RegisterBlur(Pictures& pictures, int level) {
  const std::string what = "blur" + std::to_string(level) + "-" + pictures.size.Name();
  const auto halide = std::make_shared<HalideBlur>(pictures.size, level);
  Bitmap expected = pictures.bitmap;
  kiv::AntiAliasBmp(expected, 0, level);
  halide->Run(pictures.bitmap);
  bench::Require(halide->Agrees(expected), "Halide's blur");

  Register(what, "kiv", [&pictures, level] { kiv::AntiAliasBmp(pictures.other, 0, level); });
  Register(what, "portable", [&pictures, level] {
    kiv::bmp::Blur(kiv::RasterOf(pictures.other), level, kiv::bmp::kPortableBlurKernels);
  });
  Register(what, "halide", [&pictures, halide] { halide->Run(pictures.bitmap); });
  Register(what, "opencv", [&pictures, kernel = OpenCvKernel(level)] {
    cv::Mat out = pictures.Mat(pictures.other);
    cv::filter2D(pictures.Mat(pictures.bitmap), out, -1, kernel, cv::Point(-1, -1), 0, cv::BORDER_REPLICATE);
  });
  Register(what, "floor", [&pictures] {
    std::memcpy(pictures.other.ScanLine(0), pictures.bitmap.ScanLine(0), pictures.size.Bytes());
  });
}

const bool kRegistered = [] {
  cv::setNumThreads(1);
  static std::vector<std::unique_ptr<Pictures>> all;
  for (const Size size : kSizes) {
    Pictures& pictures = *all.emplace_back(std::make_unique<Pictures>(size));
    RegisterFill(pictures, false);
    RegisterFill(pictures, true);
    RegisterBlur(pictures, 2);
    RegisterBlur(pictures, 3);
  }
  return true;
}();

}  // namespace
