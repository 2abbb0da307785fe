"""Drives the lab's machine and the program on it; for journeys, demo, pictures and benchmarks.

Everything here runs inside the lab, as root.
"""
