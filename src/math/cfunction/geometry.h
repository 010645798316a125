// The geometry a CFunctionImp is laid out on: points, and elements that
// join points by their indices.
//
// Thread-safety: immutable after construction.
#ifndef KORA_MATH_CFUNCTION_GEOMETRY_H_
#define KORA_MATH_CFUNCTION_GEOMETRY_H_

#include <memory>
#include <vector>

namespace lumo {
namespace math {

class CGeomBasePoint {
 public:
  virtual ~CGeomBasePoint();
  virtual std::unique_ptr<CGeomBasePoint> Clone() const = 0;
};

// A point on the real line.
class CGeomPoint1d : public CGeomBasePoint {
 public:
  explicit CGeomPoint1d(double x);
  std::unique_ptr<CGeomBasePoint> Clone() const override;
  double X() const { return x_; }

 private:
  double x_;
};

// An element: the indices of its points in the function's point list.
class CGeomBaseElem {
 public:
  virtual ~CGeomBaseElem();
  virtual std::unique_ptr<CGeomBaseElem> Clone() const = 0;
  const std::vector<int>& PointIndices() const { return pointIndices_; }

 protected:
  explicit CGeomBaseElem(std::vector<int> pointIndices);

 private:
  std::vector<int> pointIndices_;
};

// The one segment of a CSpec1dElementFunction, from its first to its last
// point.
class CSpec1dElem : public CGeomBaseElem {
 public:
  CSpec1dElem(int firstPoint, int lastPoint);
  std::unique_ptr<CGeomBaseElem> Clone() const override;
};

// A bar between two points, the element of fixed-shape functions.
class CBar1dElem : public CGeomBaseElem {
 public:
  CBar1dElem(int firstPoint, int lastPoint);
  std::unique_ptr<CGeomBaseElem> Clone() const override;
};

}  // namespace math
}  // namespace lumo

#endif  // KORA_MATH_CFUNCTION_GEOMETRY_H_
