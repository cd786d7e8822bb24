// 4x4 matrices as 16 doubles, row-major with row vectors (translation in
// elements 12..14), as the host hands them over.
#pragma once

namespace matrix4 {

void identity(double out[16]);
bool isIdentity(const double m[16]);
// out = a * b; out may alias neither input.
void multiply(const double a[16], const double b[16], double out[16]);
// False (out untouched) when m is singular.
bool invert(const double m[16], double out[16]);

}  // namespace matrix4
