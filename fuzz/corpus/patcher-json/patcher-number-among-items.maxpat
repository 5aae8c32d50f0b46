{"patcher": {"boxes": [
 {"box": {"id": "obj-1", "maxclass": "vrk.tessaroll", "embed": 1, "restoreitems": ["one", "two", "three", 4, "five"]}},
 {"box": {"id": "obj-2", "maxclass": "vrk.tessaroll", "embed": 1, "restoreitems": "alone"}},
 {"box": {"id": "obj-3", "maxclass": "vrk.tessaroll", "embed": 1, "restoreitems": []}},
 {"box": {"id": "obj-4", "maxclass": "vrk.tessaroll", "embed": 1, "restoreitems": {"no": "list"}}},
 {"box": {"id": "obj-5", "maxclass": "vrk.tessaroll", "embed": 1, "restoreitems": [["nested"], "no"]}},
 {"box": {"id": "obj-6", "maxclass": "tessaroll", "embed": 0, "restoreitems": ["kept", "until saved"]}}]}}
