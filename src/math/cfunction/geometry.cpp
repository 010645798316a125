#include "math/cfunction/geometry.h"

#include <utility>

namespace lumo {
namespace math {

CGeomBasePoint::~CGeomBasePoint() {}

CGeomPoint1d::CGeomPoint1d(double x) : x_(x) {}

std::unique_ptr<CGeomBasePoint> CGeomPoint1d::Clone() const {
  return std::make_unique<CGeomPoint1d>(*this);
}

CGeomBaseElem::CGeomBaseElem(std::vector<int> pointIndices)
    : pointIndices_(std::move(pointIndices)) {}

CGeomBaseElem::~CGeomBaseElem() {}

CSpec1dElem::CSpec1dElem(int firstPoint, int lastPoint) : CGeomBaseElem({firstPoint, lastPoint}) {}

std::unique_ptr<CGeomBaseElem> CSpec1dElem::Clone() const {
  return std::make_unique<CSpec1dElem>(*this);
}

CBar1dElem::CBar1dElem(int firstPoint, int lastPoint) : CGeomBaseElem({firstPoint, lastPoint}) {}

std::unique_ptr<CGeomBaseElem> CBar1dElem::Clone() const {
  return std::make_unique<CBar1dElem>(*this);
}

}  // namespace math
}  // namespace lumo
