// A still life beside a window, for a page that has what photographs have: soft shadows, smooth and
// rough surfaces, fine texture, highlights and every shade between white and black.
#version 3.7;

global_settings { assumed_gamma 1.0 max_trace_level 12 }

camera {
  location <0.6, 4.3, -13>
  look_at <0, 3.2, 0>
  right x * image_width / image_height
  angle 33
}

// The window: broad, high on the left, so that shadows are soft and long.
light_source {
  <-14, 13, -8> rgb 1.6
  spotlight point_at <-0.6, 2, 1> radius 5 falloff 27 tightness 1
  area_light <4, 0, -6>, <0, 6, 0>, 8, 8 adaptive 1 jitter
}
light_source { <12, 6, -14> rgb 0.09 shadowless }

// The wall, falling off to the right, with the grain of old plaster.
plane {
  -z, -7
  pigment {
    granite scale 3
    color_map { [0 rgb 0.42] [0.5 rgb 0.46] [1 rgb 0.51] }
  }
  normal { granite 0.06 scale 1.2 }
  finish { ambient 0.04 diffuse 0.55 }
}

// The table: planks across.
box {
  <-30, -0.6, -5>, <30, 0, 6.9>
  texture {
    pigment {
      wood turbulence <0.05, 0.04, 0.9> octaves 5 scale <3, 0.14, 0.14> rotate <2, 0, 0>
      color_map { [0 rgb 0.30] [0.45 rgb 0.24] [0.8 rgb 0.15] [1 rgb 0.09] }
    }
    normal { wood 0.25 turbulence <0.05, 0.04, 0.9> scale <3, 0.14, 0.14> }
    finish { ambient 0.03 diffuse 0.8 specular 0.25 roughness 0.03 reflection { 0.02, 0.14 } }
  }
}

// A pale cloth with a woven check, its edge over the table's.
box {
  <-3.6, 0, -5.02>, <1.5, 0.05, 1.6>
  pigment {
    checker
    pigment { checker rgb 0.95 rgb 0.86 scale 0.05 }
    pigment { checker rgb 0.62 rgb 0.50 scale 0.05 }
    scale 0.55
  }
  normal { quilted 0.3 scale 0.05 }
  finish { ambient 0.05 diffuse 0.85 }
  rotate -12 * y
}

// A glazed vase with a dark foot, and three painted rings.
#declare Glaze = finish {
  ambient 0.03 diffuse 0.7 specular 0.9 roughness 0.002 reflection { 0.03, 0.35 fresnel on } conserve_energy
};
object {
  lathe {
    cubic_spline 13,
    <0.0, -0.2>, <0.72, 0.0>, <0.82, 0.12>, <1.25, 0.9>, <1.62, 1.9>, <1.5, 2.9>, <0.98, 3.8>,
    <0.55, 4.5>, <0.52, 5.0>, <0.82, 5.45>, <0.74, 5.47>, <0.44, 5.0>, <0.44, 4.4>
  }
  texture {
    pigment {
      gradient y scale 6
      color_map {
        [0.00 rgb 0.03] [0.10 rgb 0.05] [0.22 rgb 0.30] [0.30 rgb 0.72]
        [0.42 rgb 0.80] [0.42 rgb 0.06] [0.435 rgb 0.06] [0.435 rgb 0.80]
        [0.46 rgb 0.80] [0.46 rgb 0.06] [0.475 rgb 0.06] [0.475 rgb 0.80]
        [0.50 rgb 0.80] [0.50 rgb 0.06] [0.515 rgb 0.06] [0.515 rgb 0.80]
        [1.00 rgb 0.93]
      }
    }
    normal { bumps 0.02 scale 0.2 }
    finish { Glaze }
  }
  interior { ior 1.5 }
  translate <1.7, 0, 2.0>
}

// Stems with seed heads in the vase.
#declare Seed = seed(11);
#for (I, 0, 8)
  #local Lean = (I - 4) * 0.27 + (rand(Seed) - 0.5) * 0.1;
  #local Height = 2.7 - abs(I - 4) * 0.16 + rand(Seed) * 0.5;
  #local Away = (rand(Seed) - 0.5) * 0.7;
  sphere_sweep {
    b_spline 6,
    <1.7, 3.6, 2>, 0.025, <1.7, 4.3, 2>, 0.025, <1.7 + Lean * 0.25, 5.2, 2>, 0.025,
    <1.7 + Lean * 0.8, 5.2 + Height * 0.55, 2 + Away * 0.5>, 0.022,
    <1.7 + Lean * 1.35, 5.2 + Height, 2 + Away>, 0.02,
    <1.7 + Lean * 1.6, 5.4 + Height * 1.1, 2 + Away>, 0.02
    pigment { rgb 0.16 }
    finish { ambient 0.03 }
  }
  sphere {
    0, 1
    scale <0.15, 0.24, 0.15>
    pigment { rgb 0.2 + 0.5 * rand(Seed) }
    normal { bumps 0.9 scale 0.035 }
    finish { ambient 0.03 specular 0.15 roughness 0.05 }
    rotate -Lean * 30 * z
    translate <1.7 + Lean * 1.35, 5.3 + Height, 2 + Away>
  }
#end

// Two oranges and a dark plum on the cloth.
#declare Peel = texture {
  pigment { bumps scale 0.2 color_map { [0 rgb 0.50] [1 rgb 0.58] } }
  normal { bumps 0.45 scale 0.035 }
  finish { ambient 0.03 diffuse 0.75 specular 0.35 roughness 0.02 }
};
sphere { 0, 0.95 scale <1, 0.93, 1> texture { Peel } translate <-1.75, 0.93, 0.1> }
sphere { 0, 0.88 scale <1, 0.95, 1> texture { Peel rotate 70 * x } translate <-0.15, 0.88, -1.6> }
sphere {
  0, 0.6
  scale <1, 0.92, 1>
  pigment { bozo scale 0.5 color_map { [0 rgb 0.015] [0.6 rgb 0.04] [1 rgb 0.12] } }
  finish { ambient 0.01 diffuse 0.7 specular 0.6 roughness 0.015 reflection { 0.02, 0.2 } }
  translate <-2.05, 0.6, -2.3>
}

// A pear, lying against the orange.
object {
  lathe {
    cubic_spline 9,
    <0, -0.3>, <0.25, 0.0>, <0.82, 0.42>, <0.9, 0.95>, <0.62, 1.5>, <0.4, 1.95>, <0.27, 2.25>,
    <0.0, 2.38>, <-0.3, 2.4>
  }
  texture {
    pigment {
      spotted scale 0.05
      color_map { [0 rgb 0.74] [0.78 rgb 0.70] [0.86 rgb 0.34] [1 rgb 0.30] }
    }
    finish { ambient 0.03 diffuse 0.8 specular 0.3 roughness 0.03 }
  }
  rotate <0, 0, 7>
  translate <-3.05, 0, 1.9>
}
sphere_sweep {
  b_spline 5,
  <-3.3, 1.9, 1.9>, 0.05, <-3.33, 2.2, 1.9>, 0.05, <-3.4, 2.55, 1.9>, 0.04, <-3.28, 2.85, 1.85>, 0.06,
  <-3.2, 3.0, 1.85>, 0.06
  pigment { rgb 0.06 }
}

// A polished ball and a glass marble: the picture's blackest and whitest.
sphere {
  0, 0.72
  pigment { rgb 0.85 }
  finish { ambient 0 diffuse 0.08 specular 1 roughness 0.001 reflection { 0.82 metallic } }
  translate <2.15, 0.72, -1.5>
}
sphere {
  0, 0.42
  pigment { rgbt <0.97, 0.97, 0.97, 0.95> }
  finish { ambient 0 diffuse 0 specular 1 roughness 0.0005 reflection { 0.02, 0.9 fresnel on } }
  interior { ior 1.5 caustics 0.6 }
  translate <0.95, 0.47, -2.9>
}
