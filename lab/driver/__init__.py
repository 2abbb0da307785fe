"""Drives the lab's machine and the program on it; for end-to-end tests, demo, pictures and benchmarks.

Everything here runs inside the lab, as root.
"""
