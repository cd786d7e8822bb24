// The matrix a node carries: the item's world matrix, or that matrix relative
// to its parent's. A plain function of plain values, so that the node walk and
// animation sampling place nodes by one rule.
#pragma once

enum class Placement { World, Local };

struct NodeMatrix {
  double matrix[16];
  Placement placement;  // what `matrix` turned out to be
  bool finite;          // false when an element is NaN or infinite
};

// `rule` World keeps the world matrix. Local divides the parent's world matrix
// out: local = world × parent⁻¹ (row-major, row vectors). Without a parent
// matrix (null), or with one that cannot be inverted, the node keeps its world
// matrix and the result says World.
//
// Local elements that lie within the rounding error of their own computation
// of zero are set to exactly zero, so that a child placed on its parent comes
// out as the identity. The bound is a few units in the last place of the terms
// summed for that element; a value larger than that is kept as it is.
NodeMatrix chooseNodeMatrix(const double world[16], const double* parentWorld, Placement rule);
