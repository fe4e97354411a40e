#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/threads/thread_queue.h>

namespace rasterkit {
namespace {

TBitmap Blank(TPixelFormat format, int width, int height) {
  TBitmap bitmap;
  bitmap.SetPixelFormat(format);
  bitmap.SetSize(width, height);
  return bitmap;
}

TEST(PixelThreadTest, EnumeratorsKeepTheirOrder) {
  EXPECT_EQ(pmOverwrite, 0);
  EXPECT_EQ(pmTransparent, 1);
  EXPECT_EQ(pmShadow, 2);
  EXPECT_EQ(ptBrighten, 0);
  EXPECT_EQ(ptContrast, 1);
  EXPECT_EQ(ptAssignInWhite, 2);
  EXPECT_EQ(ptAssignPart, 3);
  EXPECT_EQ(sizeof(TPixelMode), 1u);
  EXPECT_EQ(sizeof(TPixelTask), 1u);
}

TEST(PixelThreadTest, CopiesBandAndFormatFactsOfTheManager) {
  TBitmap target = Blank(pf8bit, 4, 10), source = Blank(pf4bit, 4, 10);
  TManageThreads manager(4, 10, nullptr);
  ASSERT_TRUE(manager.InitByteBits(target, source));
  const auto worker = MakeThread<TPixelThread>(manager, 3, ptAssignPart);
  EXPECT_EQ(worker->ia, 6);
  EXPECT_EQ(worker->ie, 9);
  EXPECT_EQ(worker->TarBmp, &target);
  EXPECT_EQ(worker->SrcBmp, &source);
  EXPECT_EQ(worker->nTarBytes, 1);
  EXPECT_EQ(worker->nSrcBit, 4);
  EXPECT_EQ(worker->SrcAnz, 16);
  EXPECT_EQ(worker->TarAnz, 256);
  EXPECT_EQ(worker->TarBlack, manager.TarBlack);
  EXPECT_EQ(worker->TarWhite, manager.TarWhite);
  EXPECT_EQ(worker->SrcWhite, 15);
  EXPECT_EQ(worker->SrcLastWhite, 15);
  EXPECT_EQ(worker->FromGrayVal, 250);
  EXPECT_FALSE(worker->PixTakeOver);
  EXPECT_FALSE(worker->UseAlpha);
}

TEST(PixelThreadTest, InitPixelModeStoresTheWeights) {
  TBitmap target = Blank(pf24bit, 4, 4), source = Blank(pf24bit, 4, 4);
  TManageThreads manager(1, 4, nullptr);
  ASSERT_TRUE(manager.InitByteBits(target, source));
  const auto worker = MakeThread<TPixelThread>(manager, 0, ptAssignPart);
  worker->InitPixelMode(pmOverwrite, 30, true);
  EXPECT_TRUE(worker->PixTakeOver);
  EXPECT_TRUE(worker->UseGray);
  EXPECT_EQ(worker->f, 1.0f);
  EXPECT_EQ(worker->fproz, 0.0f);
  worker->InitPixelMode(pmTransparent, 30, false);
  EXPECT_FALSE(worker->PixTakeOver) << "true colors are copied by overwriting only";
  EXPECT_EQ(worker->f, 0.7f);
  worker->InitPixelMode(pmShadow, 30, false);
  EXPECT_EQ(worker->fproz, 1.3f);
  EXPECT_EQ(worker->f, 1.3f - 1.0f) << "not 0.3f: the factor was stored before";
  EXPECT_NE(worker->f, 0.3f);
}

TEST(PixelThreadTest, IndexedPicturesOfOneFormatAreCopiedInEveryMode) {
  for (TPixelFormat format : {pf1bit, pf4bit, pf8bit}) {
    TBitmap target = Blank(format, 4, 4), source = Blank(format, 4, 4);
    TManageThreads manager(1, 4, nullptr);
    ASSERT_TRUE(manager.InitByteBits(target, source));
    const auto worker = MakeThread<TPixelThread>(manager, 0, ptAssignPart);
    for (TPixelMode mode : {pmOverwrite, pmTransparent, pmShadow}) {
      worker->InitPixelMode(mode, 10, false);
      EXPECT_TRUE(worker->PixTakeOver);
    }
  }
}

TEST(PixelThreadTest, InitTarSrcRectDividesTheSizes) {
  TBitmap target = Blank(pf24bit, 4, 4), source = Blank(pf24bit, 4, 4);
  TManageThreads manager(1, 4, nullptr);
  ASSERT_TRUE(manager.InitByteBits(target, source));
  const auto worker = MakeThread<TPixelThread>(manager, 0, ptAssignPart);
  worker->InitTarSrcRect({1, 2, 4, 6}, {0, 0, 2, 3});
  EXPECT_EQ(worker->pwx, 2.0 / 3);
  EXPECT_EQ(worker->pwy, 3.0 / 4);
  EXPECT_EQ(worker->TarR.Bottom, 6);
  EXPECT_EQ(worker->SrcR.Right, 2);
}

/// Lets a worker whose flags `setUp` has changed copy the whole source over the whole target.
template <class SetUp>
void TransferWhole(TBitmap& target, TBitmap& source, TPixelTask task, SetUp setUp) {
  TManageThreads manager(1, target.Height(), nullptr);
  ASSERT_TRUE(manager.InitByteBits(target, source));
  const auto worker = MakeThread<TPixelThread>(manager, 0, task);
  const TRect whole{0, 0, target.Width(), target.Height()};
  worker->InitPixelMode(pmOverwrite, 0, true);
  worker->InitTarSrcRect(whole, whole);
  setUp(*worker);
  worker->Start();
  worker->WaitFor();
}

TEST(PixelThreadTest, WithUseAlphaSourcePixelsOfAnyAlphaAbove0CountAsWhite) {
  for (const bool useAlpha : {false, true}) {
    TBitmap target = Blank(pf32bit, 3, 1), source = Blank(pf32bit, 3, 1);
    for (int i = 0; i < 12; ++i) {
      target.ScanLine(0)[i] = 7;
      source.ScanLine(0)[i] = 100;
    }
    source.ScanLine(0)[3] = 0;
    source.ScanLine(0)[7] = 1;
    for (int i = 8; i < 11; ++i) source.ScanLine(0)[i] = 255;
    source.ScanLine(0)[11] = 0;
    TransferWhole(target, source, ptAssignPart,
                  [&](TPixelThread& worker) { worker.UseAlpha = useAlpha; });
    EXPECT_EQ(target.ScanLine(0)[0], 100);
    EXPECT_EQ(target.ScanLine(0)[4], useAlpha ? 7 : 100) << "dark, of alpha 1";
    EXPECT_EQ(target.ScanLine(0)[8], useAlpha ? 255 : 7) << "white, of alpha 0";
  }
}

TEST(PixelThreadTest, InvertedBitsOfTheSourceAreTakenTheOtherWayRound) {
  for (const bool isInverted : {false, true}) {
    TBitmap target = Blank(pf24bit, 2, 1), source = Blank(pf1bit, 2, 1);
    source.ScanLine(0)[0] = 0x80;
    TransferWhole(target, source, ptAssignPart,
                  [&](TPixelThread& worker) { worker.SrcInv = isInverted; });
    EXPECT_EQ(target.PixelColor(0, 0), isInverted ? clBlack : clWhite);
    EXPECT_EQ(target.PixelColor(1, 0), isInverted ? clWhite : clBlack);
  }
}

TEST(PixelThreadTest, InvertedBitsOfTheTargetAreNoPlaceForTheSource) {
  for (const bool isInverted : {false, true}) {
    TBitmap target = Blank(pf1bit, 2, 1), source = Blank(pf1bit, 2, 1);
    target.ScanLine(0)[0] = 0x80;
    source.ScanLine(0)[0] = 0;
    TransferWhole(target, source, ptAssignInWhite,
                  [&](TPixelThread& worker) { worker.TarInv = isInverted; });
    EXPECT_EQ(target.ScanLine(0)[0], isInverted ? 0x80 : 0x00);
  }
}

TEST(PixelThreadTest, AWorkerByItselfTakesItsBandAndIsCountedDown) {
  TBitmap bitmap = Blank(pf24bit, 3, 10);
  for (int y = 0; y < 10; ++y) bitmap.ScanLine(y)[0] = 100;
  TManageThreads manager(2, 10, nullptr);
  auto worker = MakeThread<TPixelThread>(manager, 1, ptContrast);
  worker->InitBitmap(bitmap, 50);
  EXPECT_EQ(worker->SrcBmp, &bitmap);
  EXPECT_EQ(worker->Prozent, 50);
  TThread::StartAndFree(ThreadPtr<TThread>(worker.release()));
  while (manager.AnzThreads > 1) ThreadQueue::Current().WaitAndDispatch();
  for (int y = 0; y < 10; ++y) EXPECT_EQ(bitmap.ScanLine(y)[0], y < 5 ? 100 : 86) << y;
}

TEST(PixelThreadTest, AWorkerLooksAtTheRangeOfBrightnessItself) {
  for (const int32_t percent : {0, 101, 150, -101, 100, -100}) {
    TBitmap bitmap = Blank(pf24bit, 3, 4);
    bitmap.ScanLine(0)[0] = 100;  // of 100, 255, 255 the gray value is 237
    TManageThreads manager(1, 4, nullptr);
    const auto worker = MakeThread<TPixelThread>(manager, 0, ptBrighten);
    worker->InitBitmap(bitmap, percent);
    worker->Start();
    worker->WaitFor();
    const int expected = percent == 100 ? 218 : percent == -100 ? 0 : 100;
    EXPECT_EQ(bitmap.ScanLine(0)[0], expected) << percent;
  }
}

TEST(PixelThreadTest, ABandBeyondTheLastRowEndsTheWorkerAlone) {
  TBitmap bitmap = Blank(pf24bit, 3, 9);
  for (int y = 0; y < 9; ++y) bitmap.ScanLine(y)[0] = 100;
  TManageThreads manager(6, 9, nullptr);
  auto worker = MakeThread<TPixelThread>(manager, 4, ptContrast);
  worker->InitBitmap(bitmap, 50);
  worker->Start();
  worker->WaitFor();
  EXPECT_TRUE(worker->FatalException());
  EXPECT_EQ(bitmap.ScanLine(8)[0], 86);
}

}  // namespace
}  // namespace rasterkit
