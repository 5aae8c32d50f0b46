{"patcher": {"fileversion": 1, "rect": [0, 0, 400, 300], "default_fontname": "Arial", "gridsize": [15.0, 15.0],
 "boxes": [{"box": {"embed": 1, "id": "obj-1", "maxclass": "vrk.tessaroll", "numinlets": 1, "numoutlets": 3,
   "outlettype": ["int", "int", ""], "patching_rect": [10, 10, 120, 90],
   "restoreitems": ["12", "-1.5", "1e5", ".", "a, b", "c; d", "say \"hi\"", "back\\slash", "two\nlines", "tab\there",
     "", " ", "$1", "@embed", "#X", "Grüße", "日本語", "العربية", "🎹", "\u0001", "\u0000cut"]}}],
 "lines": []}}
