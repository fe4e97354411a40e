#include <rasterkit/metafiles/emf/emf_fields.h>
#include <rasterkit/metafiles/emf/emf_player.h>

namespace rasterkit::detail {
namespace {

/// Some programs write an integer here and some a float. The bits of a float above 0 are a larger
/// integer than any sensible limit.
double MiterLimit(MetafileBytes fields) {
  constexpr uint32_t kLeastSingle = 0x10000;
  MetafileBytes again = fields;
  const uint32_t whole = fields.Long();
  return whole < kLeastSingle ? whole : again.Single();
}

}  // namespace

bool EmfPlayer::PlayState(const EmfRecord& record) {
  MetafileBytes fields = record.Fields();
  switch (record.type) {
    case EmfType::saveDc:
      context_.SaveDC();
      return true;
    case EmfType::restoreDc:
      context_.RestoreDC(fields.Int());
      return true;
    case EmfType::setTextColor:
      context_.SetTextColor(Color(fields));
      return true;
    case EmfType::setBkColor:
      context_.SetBkColor(Color(fields));
      return true;
    case EmfType::setBkMode:
      context_.SetBkMode(static_cast<BackgroundMode>(fields.Long()));
      return true;
    case EmfType::setRop2:
      context_.SetRop2(static_cast<Rop2>(fields.Long()));
      return true;
    case EmfType::setPolyFillMode:
      context_.SetPolyFillMode(static_cast<PolygonFill>(fields.Long()));
      return true;
    case EmfType::setStretchBltMode:
      context_.SetStretchBltMode(static_cast<StretchMode>(fields.Long()));
      return true;
    case EmfType::setTextAlign:
      context_.SetTextAlign(fields.Long());
      return true;
    case EmfType::setTextJustification: {
      const int32_t extra = fields.Int();
      context_.SetTextJustification(extra, fields.Int());
      return true;
    }
    case EmfType::setArcDirection:
      context_.SetArcDirection(static_cast<ArcDirection>(fields.Long()));
      return true;
    case EmfType::setMiterLimit:
      context_.SetMiterLimit(MiterLimit(fields));
      return true;
    case EmfType::setBrushOrg:
      context_.SetBrushOrg(ReadPoint(fields));
      return true;
    default:
      return false;
  }
}

bool EmfPlayer::PlayMapping(const EmfRecord& record) {
  MetafileBytes fields = record.Fields();
  const auto scale = [&](auto set) {
    const PointD x = ReadPoint(fields), y = ReadPoint(fields);
    (context_.*set)({x.x, y.x}, {x.y, y.y});
  };
  switch (record.type) {
    case EmfType::setMapMode:
      context_.SetMapMode(static_cast<MapMode>(fields.Long()));
      return true;
    case EmfType::setWindowOrg:
      context_.SetWindowOrg(ReadPoint(fields));
      return true;
    case EmfType::setWindowExt:
      context_.SetWindowExt(ReadPoint(fields));
      return true;
    case EmfType::setViewportOrg:
      context_.SetViewportOrg(ReadPoint(fields));
      return true;
    case EmfType::setViewportExt:
      context_.SetViewportExt(ReadPoint(fields));
      return true;
    case EmfType::scaleWindowExt:
      scale(&DeviceContext::ScaleWindowExt);
      return true;
    case EmfType::scaleViewportExt:
      scale(&DeviceContext::ScaleViewportExt);
      return true;
    case EmfType::setWorldTransform:
      context_.SetWorldTransform(ReadMatrix(fields));
      return true;
    case EmfType::modifyWorldTransform: {
      const PlaneAffine matrix = ReadMatrix(fields);
      context_.ModifyWorldTransform(matrix, static_cast<WorldChange>(fields.Long()));
      return true;
    }
    case EmfType::setLayout:
      context_.SetLayout(fields.Long());
      return true;
    default:
      return false;
  }
}

bool EmfPlayer::PlayPath(const EmfRecord& record) {
  switch (record.type) {
    case EmfType::beginPath:
      context_.BeginPath();
      return true;
    case EmfType::endPath:
      context_.EndPath();
      return true;
    case EmfType::abortPath:
      context_.AbortPath();
      return true;
    case EmfType::closeFigure:
      context_.CloseFigure();
      return true;
    case EmfType::flattenPath:
      context_.FlattenPath();
      return true;
    case EmfType::widenPath:
      context_.WidenPath();
      return true;
    case EmfType::fillPath:
      context_.FillPath();
      return true;
    case EmfType::strokePath:
      context_.StrokePath();
      return true;
    case EmfType::strokeAndFillPath:
      context_.StrokeAndFillPath();
      return true;
    case EmfType::selectClipPath:
      context_.SelectClipPath(static_cast<RegionMode>(record.Fields().Long()));
      return true;
    default:
      return false;
  }
}

bool EmfPlayer::PlayRegion(const EmfRecord& record) {
  MetafileBytes fields = record.Fields();
  switch (record.type) {
    case EmfType::intersectClipRect:
      context_.IntersectClipRect(ReadRect(fields));
      return true;
    case EmfType::excludeClipRect:
      context_.ExcludeClipRect(ReadRect(fields));
      return true;
    case EmfType::offsetClipRgn:
      context_.OffsetClipRgn(ReadPoint(fields));
      return true;
    case EmfType::setMetaRgn:
      context_.SetMetaRgn();
      return true;
    case EmfType::extSelectClipRgn: {
      const uint32_t bytes = fields.Long();
      const auto mode = static_cast<RegionMode>(fields.Long());
      if (bytes == 0) {
        context_.ExtSelectClipRgn(std::nullopt, RegionUnit::device, mode);
      } else {
        context_.ExtSelectClipRgn(ReadRegion(fields), RegionUnit::device, mode);
      }
      return true;
    }
    case EmfType::fillRgn:
    case EmfType::frameRgn: {
      fields.Skip(kEmfBoundsBytes + 4);
      const BrushObject brush = BrushOf(fields.Long());
      const bool isFrame = record.type == EmfType::frameRgn;
      const PointD thickness = isFrame ? ReadPoint(fields) : PointD();
      const std::vector<RectD> region = ReadRegion(fields);
      if (isFrame) {
        context_.FrameRgn(region, RegionUnit::logical, *brush, thickness);
      } else {
        context_.FillRgn(region, RegionUnit::logical, *brush);
      }
      return true;
    }
    case EmfType::invertRgn:
      fields.Skip(kEmfBoundsBytes + 4);
      context_.InvertRgn(ReadRegion(fields), RegionUnit::logical);
      return true;
    case EmfType::paintRgn:
      fields.Skip(kEmfBoundsBytes + 4);
      context_.PaintRgn(ReadRegion(fields), RegionUnit::logical);
      return true;
    default:
      return false;
  }
}

}  // namespace rasterkit::detail
