"""What the cross linker leaves to be done: it knows no list of exported symbols."""
