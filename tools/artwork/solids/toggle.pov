// SPDX-License-Identifier: GPL-3.0-or-later
// The bat of the toggle switch, over the nut that toggle.py draws. One unit is one pixel of the bitmap; the axis stands in
// the origin, y goes up and z away from the eye.
//
// Declared from outside: On (1: bat up), Pass (0: the picture; 1: what of it is bat; 2: the light on matt things, with the
// bat; 3: without it), BoxX, BoxY, BoxZ (towards the light), BoxAcross, BoxAlong.
#version 3.7;

global_settings { assumed_gamma 1.0 max_trace_level 6 }

#declare ToBox = vnormalize(<BoxX, BoxY, BoxZ>);
#declare Across = vnormalize(vcross(<0, 0, -1>, ToBox));
#declare Along = vcross(ToBox, Across);
#declare Far = 700;

camera {
  orthographic
  location <0, -9, -400>
  direction z
  right 140 * x
  up 158 * y
}

#if (Pass >= 2)
light_source {
  ToBox * Far
  color rgb 1
  area_light Across * BoxAcross * 1.8 * Far, Along * BoxAlong * 1.8 * Far, 11, 9
  adaptive 2
}
#end

// What polished steel mirrors: a dark room, the ceiling that the soft box lights, its cloth, and the bench in front.
#if (Pass = 0)
#declare ToX = ToBox.x;
#declare ToY = ToBox.y;
#declare ToZ = ToBox.z;
#declare Step = function(E0, E1, V) { min(max((V - E0) / (E1 - E0), 0), 1) };
#declare Soft = function(T) { T * T * (3 - 2 * T) };
sky_sphere {
  pigment {
    function {
      0.035 + 0.10 * pow(max(-z, 0), 3) + 0.20 * Soft(Step(0.05, 0.8, y)) + 0.17 * Soft(Step(0.15, 0.85, -y))
      + 0.75 * pow(max(x * ToX + y * ToY + z * ToZ, 0), 7)
    }
    color_map { [0 rgb 0] [1 rgb 1] }
  }
}

// The cloth is brightest in its middle.
#declare Edges = 14;
#for (I, 1, Edges)
  #declare S = sqrt(I / Edges);
  #declare A = Across * BoxAcross * S;
  #declare B = Along * BoxAlong * S;
  polygon {
    5, A + B, A - B, -A - B, -A + B, A + B
    texture { pigment { rgb 1 } finish { ambient 0 diffuse 0 emission 0.9 + 1.5 * (1 - I / Edges) } }
    scale Far * (0.98 - 0.001 * (Edges - I))
    translate ToBox * Far * (0.98 - 0.001 * (Edges - I))
    no_shadow
    no_image
  }
#end
#end

// Seen: the share of its colour that a matt part sends back under the soft box.
#macro Surface(Tint, Mirror, Satin, Seen)
  #if (Pass = 0)
    // The bumps are far finer than a pixel: many of them together blur what is mirrored, as satin metal does.
    texture {
      pigment { rgb Tint }
      normal { bumps Satin scale 0.013 }
      finish { ambient 0 emission Seen diffuse 0 reflection { Mirror metallic } }
    }
  #else
    #if (Pass = 1)
      texture { pigment { rgb 0 } finish { ambient 0 diffuse 0 } }
    #else
      texture { pigment { rgb 1 } finish { ambient 0 diffuse 1 } }
    #end
  #end
#end

#declare Tilt = 60;

#if (Pass != 3)
union {
  sphere_sweep {
    linear_spline 3,
    <0, 0, 0>, 5.6,
    <0, 12, 0>, 6.2,
    <0, 55, 0>, 11.4
    tolerance 0.0001
  }
  sphere { 0, 7.6 }
  rotate -90 * x
  rotate (On ? 1 : -1) * Tilt * x
  translate -13 * z
  #if (Pass = 1)
    texture { pigment { rgb 1 } finish { ambient 0 diffuse 0 emission 1 } }
  #else
    Surface(rgb <0.90, 0.91, 0.93>, 0.95, 0.20, 0.02)
  #end
}
#end

// washer
cylinder { <0, 0, 1>, <0, 0, -3.2>, 37 Surface(rgb 0.05, 0.05, 0, 1) }

// hex nut
intersection {
  prism {
    linear_sweep linear_spline -3, 14, 7,
    #for (I, 0, 6)
      <32 * cos(radians(60 * I + 12)), 32 * sin(radians(60 * I + 12))>
      #if (I < 6) , #end
    #end
    rotate -90 * x
  }
  cone { <0, 0, 4>, 46, <0, 0, -14>, 27 }
  cylinder { <0, 0, 1>, <0, 0, -20>, 13 inverse }
  Surface(rgb 0.6, 0.45, 0.3, 0.45)
}

// bushing
difference {
  cylinder { 0, <0, 0, -18>, 15 }
  cone { <0, 0, -8>, 8, <0, 0, -18.1>, 12.2 }
  Surface(rgb 0.6, 0.45, 0.3, 0.45)
}

plane { -z, 0 Surface(rgb 0.055, 0.02, 0, 1) }
