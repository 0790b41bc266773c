// The pictures in the DLL: there in every resolution, and drawn.

#include <set>

#include "addin_library.h"

namespace addin_dll_tests {
namespace {

struct PictureCase {
  const wchar_t* name;
  int width;  // at 96 dots per inch
  int height;
};

class Pictures : public testing::TestWithParam<PictureCase> {};

TEST_P(Pictures, EveryResolution_IsThereInItsSizeAndHasManyColours) {
  const HMODULE library = LoadLibraryExW(win32::wide(productFile(u"mrktxtmsg.dll")), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  ASSERT_NE(library, nullptr);
  for (const int resolution : {96, 144}) {
    const std::wstring name = std::wstring(L"PICTURE_") + GetParam().name + L"_" + std::to_wstring(resolution);
    auto* const picture =
        static_cast<HBITMAP>(LoadImageW(library, name.c_str(), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
    ASSERT_NE(picture, nullptr) << resolution;
    BITMAP bitmap{};
    GetObjectW(picture, sizeof bitmap, &bitmap);
    EXPECT_NEAR(bitmap.bmWidth, GetParam().width * resolution / 96.0, 0.5);
    EXPECT_NEAR(bitmap.bmHeight, GetParam().height * resolution / 96.0, 0.5);
    const HDC dc = CreateCompatibleDC(nullptr);
    const HGDIOBJ before = SelectObject(dc, picture);
    std::set<COLORREF> colours;
    for (int y = 0; y < bitmap.bmHeight; y += 2)
      for (int x = 0; x < bitmap.bmWidth; x += 2) colours.insert(GetPixel(dc, x, y));
    EXPECT_GT(colours.size(), 40u) << resolution;
    EXPECT_TRUE(
        colours.contains(RGB(255, 255, 255)));  // the paper of an envelope, a card or a bubble, or a mast's waves
    SelectObject(dc, before);
    DeleteDC(dc);
    DeleteObject(picture);
  }
  FreeLibrary(library);
}

INSTANTIATE_TEST_SUITE_P(All, Pictures,
                         testing::Values(PictureCase{L"BANNER", 120, 52}, PictureCase{L"WIZARD1", 132, 234},
                                         PictureCase{L"WIZARD2", 132, 234}, PictureCase{L"WIZARD3", 132, 234},
                                         PictureCase{L"WIZARD4", 132, 234}),
                         [](const auto& one) {
                           const std::wstring name = one.param.name;
                           return std::string(name.begin(), name.end());
                         });

}  // namespace
}  // namespace addin_dll_tests
