"""A private room in which the unchanged program runs against a virtual instrument."""
