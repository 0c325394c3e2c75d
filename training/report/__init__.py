"""What training/evaluate printed, as pages: see training/quality_report.py."""
