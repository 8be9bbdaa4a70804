// The upper half of a square plate of side 2 * side with a circular hole of radius 1 about the origin.
//
//      +---------------------------+
//      | \                       / |     The top block spans 90 degrees of the hole with 2n + 1 elements. The count is
//      |   \        top        /   |     odd, so that the y axis, which is the section that is looked at, runs through
//      |     \               /     |     the middle of the elements and not along their sides. The two outer blocks
//      | left  \ _--"""--_ /  right|     span 45 degrees with n elements each.
//      |        /         \        |
//      +-------+           +-------+
//
// One file for every mesh: choose with -setnumber, as make_meshes does.

DefineConstant[
  n         = {4, Min 1, Step 1, Name "Elements over 45 degrees of the hole"},
  family    = {2, Choices{1 = "triangles", 2 = "quadrilaterals", 3 = "hexahedra", 4 = "wedges"}, Name "Element family"},
  order     = {1, Choices{1 = "linear", 2 = "quadratic"}, Name "Element order"},
  side      = {4, Min 2, Name "Half the width of the plate [hole radii]"},
  thickness = {0.5, Name "Thickness of the solid plate [hole radii]"}
];

across = Ceil(1.5 * n);     // elements from the hole to the edge of the plate
growth = 10 ^ (1 / across);  // the last of them is about ten times as long as the first, however many there are
layers = Ceil(n / 4);       // elements through the thickness of the solid

Point(1) = {0, 0, 0};
diagonal = Sqrt(2) / 2;

Point(11) = {1, 0, 0};                  Point(21) = {side, 0, 0};
Point(12) = {diagonal, diagonal, 0};    Point(22) = {side, side, 0};
Point(13) = {-diagonal, diagonal, 0};   Point(23) = {-side, side, 0};
Point(14) = {-1, 0, 0};                 Point(24) = {-side, 0, 0};

Circle(11) = {11, 1, 12};   Line(21) = {21, 22};   Line(31) = {11, 21};
Circle(12) = {12, 1, 13};   Line(22) = {22, 23};   Line(32) = {12, 22};
Circle(13) = {13, 1, 14};   Line(23) = {23, 24};   Line(33) = {13, 23};
                                                   Line(34) = {14, 24};

Curve Loop(1) = {31, 21, -32, -11};   Plane Surface(1) = {1};   // right
Curve Loop(2) = {32, 22, -33, -12};   Plane Surface(2) = {2};   // top
Curve Loop(3) = {33, 23, -34, -13};   Plane Surface(3) = {3};   // left

Transfinite Curve{11, 21, 13, 23} = n + 1;
Transfinite Curve{12, 22} = 2 * n + 2;
Transfinite Curve{31:34} = across + 1 Using Progression growth;
Transfinite Surface{1:3};

If (family == 2 || family == 3)
  Recombine Surface{1:3};
EndIf

If (family < 3)
  Physical Curve("hole") = {11:13};
  Physical Surface("plate") = {1:3};
Else
  right[] = Extrude{0, 0, thickness} { Surface{1}; Layers{layers}; Recombine; };
  top[] = Extrude{0, 0, thickness} { Surface{2}; Layers{layers}; Recombine; };
  left[] = Extrude{0, 0, thickness} { Surface{3}; Layers{layers}; Recombine; };
  Physical Surface("hole") = {right[5], top[5], left[5]};  // [2] to [5]: the walls over the sides of the loop
  Physical Volume("plate") = {right[1], top[1], left[1]};
EndIf

Mesh.ElementOrder = order;
Mesh.SecondOrderIncomplete = 1;  // 8-node quadrilaterals, not 9
