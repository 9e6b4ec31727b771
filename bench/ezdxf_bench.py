"""Reads and writes one DXF file with ezdxf and prints the times: ezdxf_bench.py IN OUT"""
import sys
import time

import ezdxf

t0 = time.perf_counter()
doc = ezdxf.readfile(sys.argv[1])
t1 = time.perf_counter()
doc.saveas(sys.argv[2])
t2 = time.perf_counter()
print(f"ezdxf read {t1 - t0:.3f} s write {t2 - t1:.3f} s")
