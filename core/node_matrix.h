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
// out: local = world × parent⁻¹ (row-major, row vectors). A parent matrix that
// cannot be inverted (a scale of 0) gives `ownLocal`, the item's matrix from
// its own transform stack, which under that parent lands where the host puts
// the item. Without a parent matrix (null), or without `ownLocal` when it is
// needed, the node keeps its world matrix and the result says World.
//
// A world matrix equal to the parent's gives exactly the identity. Otherwise
// local elements within the rounding error of their own computation (a few
// units in the last place of the terms summed for them) are set to zero, but
// only when the result, multiplied back by the parent, still gives `world`
// element for element in single precision; else the product stays as computed.
NodeMatrix chooseNodeMatrix(const double world[16], const double* parentWorld, Placement rule,
                            const double* ownLocal = nullptr);
