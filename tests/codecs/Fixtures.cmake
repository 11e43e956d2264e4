# Codec plug-in modules for the codec manager's tests, built into a fixture folder of their own:
# two conforming codecs with different priorities, a module without the entry point, and one
# built for another ABI version.
set(codec_fixture_dir ${CMAKE_CURRENT_BINARY_DIR}/codecs/fixture-plugins)
vesperon_add_plugin(test_low SOURCES ${dir}/plugins/TestCodec.cpp OUTPUT_DIRECTORY ${codec_fixture_dir})
target_compile_definitions(vesperon_plugin_test_low PRIVATE TEST_CODEC_ID="test.low" TEST_CODEC_PRIORITY=10)
vesperon_add_plugin(test_high SOURCES ${dir}/plugins/TestCodec.cpp OUTPUT_DIRECTORY ${codec_fixture_dir})
target_compile_definitions(vesperon_plugin_test_high PRIVATE TEST_CODEC_ID="test.high" TEST_CODEC_PRIORITY=20)
vesperon_add_plugin(test_writer SOURCES ${dir}/plugins/TestCodec.cpp OUTPUT_DIRECTORY ${codec_fixture_dir})
target_compile_definitions(vesperon_plugin_test_writer PRIVATE TEST_CODEC_ID="test.writer" TEST_CODEC_PRIORITY=15 TEST_CODEC_WRITER=1)
vesperon_add_plugin(test_no_entry SOURCES ${dir}/plugins/NoEntry.cpp OUTPUT_DIRECTORY ${codec_fixture_dir} NO_MANIFEST)
vesperon_add_plugin(test_old_abi SOURCES ${dir}/plugins/TestCodec.cpp OUTPUT_DIRECTORY ${codec_fixture_dir} NO_MANIFEST)
target_compile_definitions(vesperon_plugin_test_old_abi PRIVATE TEST_CODEC_ID="test.old" TEST_CODEC_PRIORITY=99 TEST_CODEC_ABI_OFFSET=1)
# A probe registered for camera raw types, in a folder of its own.
set(raw_probe_dir ${CMAKE_CURRENT_BINARY_DIR}/codecs/raw-probe-plugin)
vesperon_add_plugin(test_raw_probe SOURCES ${dir}/plugins/RawProbeCodec.cpp OUTPUT_DIRECTORY ${raw_probe_dir})
list(APPEND fixture_dependencies vesperon_plugin_test_low vesperon_plugin_test_high vesperon_plugin_test_writer
  vesperon_plugin_test_no_entry vesperon_plugin_test_old_abi vesperon_plugin_test_raw_probe)
list(APPEND fixture_definitions RAW_PROBE_DIR="${raw_probe_dir}")
list(APPEND fixture_definitions CODEC_FIXTURE_DIR="${codec_fixture_dir}")
