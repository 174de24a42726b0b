// SPDX-License-Identifier: GPL-3.0-or-later
// The toggle switch: bat, bushing, hex nut and washer. One unit is one pixel of the bitmap; the axis stands in the origin,
// y goes up and z away from the eye.
//
// Declared from outside: On (1: bat up), Pass (0: the picture; 1: what is switch and what is plate; 2: the shadow on a matt
// plate; 3: that plate without the switch), BoxX, BoxY, BoxZ (towards the light), BoxAcross, BoxAlong, Room.
#version 3.7;
#include "math.inc"

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

#if (Pass != 1)
light_source {
  ToBox * Far
  color rgb (1 - Room) / vdot(ToBox, <0, 0, -1>)
  area_light Across * BoxAcross * 2 * Far * 0.9, Along * BoxAlong * 2 * Far * 0.9, 11, 9
  adaptive 2
}
#end

// What the metal mirrors: a dark room, a little lighter above, and the cloth of the soft box.
sky_sphere {
  pigment {
    gradient y
    color_map {
      [0.00 rgb 0.015]
      [0.42 rgb 0.045]
      [0.60 rgb 0.14]
      [0.80 rgb 0.26]
      [1.00 rgb 0.32]
    }
    scale 2
    translate -1
  }
}

#if (Pass = 0)
mesh {
  triangle { Across * BoxAcross + Along * BoxAlong, -Across * BoxAcross + Along * BoxAlong, -Across * BoxAcross - Along * BoxAlong }
  triangle { Across * BoxAcross + Along * BoxAlong, -Across * BoxAcross - Along * BoxAlong, Across * BoxAcross - Along * BoxAlong }
  texture { pigment { rgb 1 } finish { ambient 0 diffuse 0 emission 1.9 } }
  scale Far * 0.98
  translate ToBox * Far * 0.98
  no_shadow
  no_image
}
#end

#macro Metal(Tint, Mirror, Roughness)
  texture {
    pigment { rgb Tint }
    #if (Pass = 1)
      finish { ambient 0 diffuse 0 emission 1 }
    #else
      finish { ambient 0 emission 0 diffuse 0.10 specular 0.5 * Mirror roughness Roughness metallic reflection { Mirror metallic } }
    #end
  }
#end

#declare Chrome = Metal(rgb <0.80, 0.81, 0.83>, 0.95, 0.004)
#declare Steel = Metal(rgb <0.66, 0.67, 0.69>, 0.75, 0.05)
#declare Dark = Metal(rgb <0.05, 0.05, 0.055>, 0.1, 0.05)

#if (Pass = 1)
  #declare Chrome = texture { pigment { rgb 1 } finish { ambient 0 diffuse 0 emission 1 } }
  #declare Steel = Chrome
  #declare Dark = Chrome
#end

#declare Tilt = 36;
#declare Bat = union {
  lathe {
    cubic_spline 9,
    <3, -10>, <5.2, 0>, <5.4, 14>, <6.6, 32>, <9.0, 56>, <10.6, 72>, <9.6, 80>, <5.4, 84.6>, <0, 85.5>
  }
  disc { <0, 85.0, 0>, y, 5 }
  texture { Chrome }
};

#declare Hex = intersection {
  prism { linear_sweep linear_spline 0, 12, 7,
    #for (I, 0, 6)
      <31.5 * cos(radians(60 * I + 12)), 31.5 * sin(radians(60 * I + 12))>
      #if (I < 6) , #end
    #end
    rotate -90 * x
    scale <1, 1, 1>
  }
  cone { <0, 0, 3>, 37, <0, 0, -13.2>, 27 }
  cylinder { <0, 0, 1>, <0, 0, -20>, 60 }
  cylinder { <0, 0, 1>, <0, 0, -20>, 16.5 inverse }
  texture { Steel }
};

#declare Switch = union {
  // washer
  difference {
    union {
      cylinder { <0, 0, 0.5>, <0, 0, -2.4>, 37.5 }
      cylinder { <0, 0, 0.5>, <0, 0, -3.2>, 36.7 }
      torus { 36.7, 0.8 rotate 90 * x translate -2.4 * z }
    }
    cylinder { <0, 0, 5>, <0, 0, -10>, 16 }
    texture { Steel }
  }
  object { Hex translate -3 * z }
  // bushing, with its thread
  difference {
    union {
      cylinder { 0, <0, 0, -19>, 15.2 }
      cone { <0, 0, -19>, 15.2, <0, 0, -20.4>, 13.8 }
      #for (I, 0, 3)
        torus { 15.2, 0.9 rotate 90 * x translate -(16 + I * 1.3 - 2) * z }
      #end
    }
    cone { <0, 0, -8>, 7.5, <0, 0, -21>, 12.6 }
    texture { Steel }
  }
  cylinder { 0, <0, 0, -9>, 12 texture { Dark } }
  sphere { <0, 0, -12>, 8.2 texture { Chrome } }
  // the bat points at the eye and is then tilted up or down
  object { Bat rotate -90 * x rotate (On ? 1 : -1) * Tilt * x translate -12 * z }
};

#if (Pass != 3)
object { Switch }
#end

plane {
  -z, 0
  #if (Pass = 0)
    pigment { rgb 0.026 } finish { ambient 0 diffuse 1 }
  #else #if (Pass = 1)
    pigment { rgb 0 } finish { ambient 0 diffuse 0 }
  #else
    pigment { rgb 1 } finish { ambient 0 diffuse 1 }
  #end #end
}
