// Before our own windows header on purpose.
#include "support/win32/screenshot.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <windows.h>
#include <wincodec.h>

#include "com/pointers.h"
#include "support/win32/product.h"

namespace screen {
namespace {

using testing_support::waitUntil;

struct Windows {
  DWORD process;
  RECT area{};             // around all of them
  bool unpainted = false;  // whether one waits to be painted
};

BOOL CALLBACK lookAtPart(HWND window, LPARAM extra) {
  if (IsWindowVisible(window) && GetUpdateRect(window, nullptr, FALSE))
    reinterpret_cast<Windows*>(extra)->unpainted = true;
  return TRUE;
}

BOOL CALLBACK lookAtWindow(HWND window, LPARAM extra) {
  auto& all = *reinterpret_cast<Windows*>(extra);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process != all.process || !IsWindowVisible(window) || IsIconic(window)) return TRUE;
  RECT place{};
  GetWindowRect(window, &place);
  const RECT before = all.area;
  UnionRect(&all.area, &before, &place);
  lookAtPart(window, extra);
  EnumChildWindows(window, &lookAtPart, extra);
  return TRUE;
}

Windows windowsOf(DWORD process) {
  Windows all{process};
  EnumWindows(&lookAtWindow, reinterpret_cast<LPARAM>(&all));
  const RECT screen{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
  const RECT wanted = all.area;
  IntersectRect(&all.area, &wanted, &screen);
  return all;
}

struct Pixels {
  UINT width = 0;
  UINT height = 0;
  UINT stride = 0;          // bytes of a line
  std::vector<BYTE> bytes;  // blue, green, red, from the top
  bool operator==(const Pixels&) const = default;
};

Pixels capture(const RECT& area) {
  Pixels pixels;
  pixels.width = static_cast<UINT>(area.right - area.left);
  pixels.height = static_cast<UINT>(area.bottom - area.top);
  pixels.stride = (pixels.width * 3 + 3) / 4 * 4;
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = static_cast<LONG>(pixels.width);
  info.bmiHeader.biHeight = -static_cast<LONG>(pixels.height);
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 24;
  const HDC screen = GetDC(nullptr);
  const HDC memory = CreateCompatibleDC(screen);
  void* bits = nullptr;
  const HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (bitmap) {
    const HGDIOBJ before = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, static_cast<int>(pixels.width), static_cast<int>(pixels.height), screen, area.left, area.top,
           SRCCOPY);
    GdiFlush();
    const auto* const first = static_cast<const BYTE*>(bits);
    pixels.bytes.assign(first, first + std::size_t{pixels.stride} * pixels.height);
    SelectObject(memory, before);
    DeleteObject(bitmap);
  }
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  return pixels;
}

bool write(Pixels& pixels, const std::wstring& file) {
  com::Ptr<IWICImagingFactory> factory;
  com::Ptr<IWICStream> stream;
  com::Ptr<IWICBitmapEncoder> encoder;
  com::Ptr<IWICBitmapFrameEncode> frame;
  WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
  const auto done = [](HRESULT result) { return SUCCEEDED(result); };
  return done(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                               reinterpret_cast<void**>(factory.put()))) &&
         done(factory->CreateStream(stream.put())) &&
         done(stream->InitializeFromFilename(file.c_str(), GENERIC_WRITE)) &&
         done(factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder.put())) &&
         done(encoder->Initialize(stream.get(), WICBitmapEncoderNoCache)) &&
         done(encoder->CreateNewFrame(frame.put(), nullptr)) && done(frame->Initialize(nullptr)) &&
         done(frame->SetSize(pixels.width, pixels.height)) && done(frame->SetPixelFormat(&format)) &&
         IsEqualGUID(format, GUID_WICPixelFormat24bppBGR) &&
         done(frame->WritePixels(pixels.height, pixels.stride, static_cast<UINT>(pixels.bytes.size()),
                                 pixels.bytes.data())) &&
         done(frame->Commit()) && done(encoder->Commit());
}

}  // namespace

// Painted windows reach the screen a moment later: when two looks see the same, it is there.
bool saveScreenshot(DWORD process, const std::wstring& file) {
  Pixels now;
  waitUntil([&] {
    const Windows all = windowsOf(process);
    if (all.unpainted || IsRectEmpty(&all.area)) return false;
    Pixels before = std::exchange(now, capture(all.area));
    return before == now;
  });
  return !now.bytes.empty() && write(now, file);
}

std::vector<bool> inkIn(const RECT& area) {
  const Pixels pixels = capture(area);
  std::vector<bool> ink;
  for (UINT y = 0; y < pixels.height && !pixels.bytes.empty(); ++y) {
    const BYTE* const line = pixels.bytes.data() + std::size_t{y} * pixels.stride;
    for (UINT x = 0; x < pixels.width; ++x)
      ink.push_back(!std::equal(line + x * 3, line + x * 3 + 3, pixels.bytes.data()));
  }
  return ink;
}

}  // namespace screen
