"""What the tests of the schemas of records have in common."""


def verdict(failures, validator, spoilt):
    """Prints what is wrong, records that the schema should refuse among it. Returns an exit status."""
    failures = failures + [f"a record {what} satisfies the schema" for what, record in spoilt if validator.is_valid(record)]
    for failure in failures[:20]:
        print(failure)
    return 1 if failures else 0
