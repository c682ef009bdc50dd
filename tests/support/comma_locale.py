"""The surroundings of people whose numbers have a comma where programs' have a point."""
import os
import subprocess


def comma_locale(test, folder):
    """Environment variables of such a locale, compiled into `folder`. Skips the test where it can't be."""
    path = os.path.join(folder, "locales")
    os.mkdir(path)
    made = subprocess.run(["localedef", "--no-archive", "-i", "de_DE", "-f", "UTF-8",
                           os.path.join(path, "de_DE.UTF-8")], check=False, capture_output=True)
    if made.returncode > 1:  # 1 is a warning
        test.skipTest("no source of the locale de_DE: package locales")
    # The C library never frees its list of the folders in LOCPATH: that is no leak of the filter's.
    environment = {"LOCPATH": path, "LC_ALL": "de_DE.UTF-8", "ASAN_OPTIONS": "detect_leaks=0"}
    point = subprocess.run(["locale", "decimal_point"], env=dict(os.environ, **environment), check=True,
                           capture_output=True, text=True).stdout
    test.assertEqual(point, ",\n")
    return environment
