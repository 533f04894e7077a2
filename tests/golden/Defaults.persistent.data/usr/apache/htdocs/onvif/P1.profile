changed
