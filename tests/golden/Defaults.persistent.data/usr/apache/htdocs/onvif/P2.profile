added later
